#include <kestrel/session/common_form.h>

namespace kestrel::session_detail {

PlatformError withUnderlying(PlatformError form, const AnyError& underlying) {
    PlatformError inner = underlying.platformError();
    form.localizedDescription = std::move(inner.localizedDescription);
    form.localizedRecoverySuggestion = std::move(inner.localizedRecoverySuggestion);
    form.localizedFailureReason = std::move(inner.localizedFailureReason);
    form.userInfo = std::move(inner.userInfo);
    form.userInfo.insert_or_assign(std::string(underlyingDomainKey), std::move(inner.domain));
    form.userInfo.insert_or_assign(std::string(underlyingCodeKey), inner.code);
    return form;
}

PlatformError withText(PlatformError form, std::string_view label, const std::string& text) {
    form.userInfo.insert_or_assign(std::string(label), text);
    return form;
}

}  // namespace kestrel::session_detail
