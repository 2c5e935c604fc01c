#pragma once

#include <gio/gio.h>
#include <kestrel/foundation/platform_error.h>
#include <kestrel/reactive/cancellable.h>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

// What the parts on GLib share: ownership of its objects, its errors, and file descriptors on the main loop.
namespace kestrel::platform {

/// Lets go of what GLib has handed over.
struct GLibRelease {
    void operator()(char* text) const noexcept { g_free(text); }
    void operator()(char** texts) const noexcept { g_strfreev(texts); }
    void operator()(GError* error) const noexcept { g_error_free(error); }
    void operator()(GVariant* variant) const noexcept { g_variant_unref(variant); }
    void operator()(GSettingsSchema* schema) const noexcept { g_settings_schema_unref(schema); }
    void operator()(GSettingsSchemaKey* key) const noexcept { g_settings_schema_key_unref(key); }
    template <class Object>
    void operator()(Object* object) const noexcept {
        g_object_unref(object);
    }
};

/// Something of GLib's that is ours to let go of: an object, a text, a variant.
template <class T>
using GLibOwned = std::unique_ptr<T, GLibRelease>;
using GLibText = GLibOwned<char>;
using GLibError = GLibOwned<GError>;

/// Another reference to an object.
template <class T>
[[nodiscard]] GLibOwned<T> shared(T* object) {
    return GLibOwned<T>(static_cast<T*>(g_object_ref(object)));
}

/// Flags that are set together: any number of an enumeration's constants.
template <class Flags>
[[nodiscard]] constexpr Flags joined(Flags a, std::type_identity_t<Flags> b) {
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): what is joined has no constant of its own.
    return static_cast<Flags>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

/// Takes the error that a call of GLib's has left. The text is GLib's own, in the language of the process's locale.
[[nodiscard]] PlatformError platformError(const GError& error);

/// A file descriptor, closed in the end.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor();

    [[nodiscard]] int number() const noexcept { return number_; }
    [[nodiscard]] explicit operator bool() const noexcept { return number_ >= 0; }

  private:
    int number_ = -1;
};

/// Calls the handler on the thread of the main context whenever the descriptor is ready, until the result is cancelled
/// or destroyed. That may happen inside the handler, which stays alive until it returns.
[[nodiscard]] AnyCancellable watchDescriptor(GMainContext* context, int descriptor, GIOCondition condition,
                                             std::move_only_function<void(GIOCondition ready)> handler);

}  // namespace kestrel::platform
