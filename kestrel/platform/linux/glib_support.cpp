#include <kestrel/platform/linux/glib_support.h>
#include <unistd.h>

namespace kestrel::platform {

namespace {

struct DescriptorSource {
    GSource base;
    void* tag;
    std::move_only_function<void(GIOCondition)>* handler;
};

DescriptorSource& own(GSource* source) {
    return *reinterpret_cast<DescriptorSource*>(source);
}

// An exception that reached GLib's frames would be lost in them: what the handler throws ends the program.
gboolean dispatchDescriptor(GSource* source, GSourceFunc /*callback*/, gpointer /*data*/) noexcept {
    (*own(source).handler)(g_source_query_unix_fd(source, own(source).tag));
    return G_SOURCE_CONTINUE;
}

void finalizeDescriptor(GSource* source) noexcept {
    delete own(source).handler;
}

}  // namespace

PlatformError platformError(const GError& error) {
    return {.domain = g_quark_to_string(error.domain), .code = error.code, .localizedDescription = error.message};
}

FileDescriptor::~FileDescriptor() {
    if (number_ >= 0) close(number_);
}

AnyCancellable watchDescriptor(GMainContext* context, int descriptor, GIOCondition condition,
                               std::move_only_function<void(GIOCondition ready)> handler) {
    static GSourceFuncs functions{.prepare = nullptr,
                                  .check = nullptr,
                                  .dispatch = dispatchDescriptor,
                                  .finalize = finalizeDescriptor,
                                  .closure_callback = nullptr,
                                  .closure_marshal = nullptr};
    auto held = std::make_unique<std::move_only_function<void(GIOCondition)>>(std::move(handler));
    GSource* const source = g_source_new(&functions, sizeof(DescriptorSource));
    g_source_set_static_name(source, "KestrelService descriptor");
    own(source).handler = held.release();
    own(source).tag = g_source_add_unix_fd(source, descriptor, condition);
    g_source_attach(source, context);
    return AnyCancellable([source] {
        g_source_destroy(source);
        g_source_unref(source);
    });
}

}  // namespace kestrel::platform
