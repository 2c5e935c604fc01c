#include <kestrel/reactive/pass_through_subject.h>
#include <kestrel/services/local_url_service.h>
#include <optional>

namespace kestrel {

bool LocalURLService::canOpenURL(const URL& url) const {
    return !workspace_->applicationsToOpen(url).empty();
}

AnyPublisher<Never, PlatformError> LocalURLService::openURL(const URL& url) {
    using Opened = Completion<PlatformError>;
    return deferred([workspace = workspace_, url] {
        const PassThroughSubject<Never, PlatformError> opened;
        workspace->open(url, [opened](std::optional<PlatformError> error) {
            opened.send(error ? Opened::failed(*std::move(error)) : Opened::finished());
        });
        return opened.eraseToAnyPublisher();
    });
}

}  // namespace kestrel
