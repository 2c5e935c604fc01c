#include <host/accounts/secrets.h>
#include <host/failure.h>
#include <host/session/defaults_login_storage.h>

namespace kestrel::host {
namespace {

struct LastUsernameKey {
    using Value = std::optional<std::string>;
    static constexpr std::string_view key = "LastUsername";
    static inline const Value defaultValue{};
};
struct PasswordHashKey {
    using Value = std::optional<std::string>;
    static constexpr std::string_view key = "LastPasswordHash";
    static inline const Value defaultValue{};
};

/// Ends as the first write that fails did, or finishes.
AnyPublisher<Never, UpdateError> written(std::initializer_list<DefaultsWritten> results) {
    for (const DefaultsWritten& result : results) {
        if (!result) return fail<Never>(UpdateError::underlyingError(result.error()));
    }
    return empty<Never, UpdateError>();
}

}  // namespace

AnyPublisher<std::optional<std::string>, ReadError> DefaultsLoginStorage::fetchLastUsername() {
    return deferred([defaults = defaults_] {
        return just<std::optional<std::string>, ReadError>(defaults->get(LastUsernameKey{}));
    });
}

AnyPublisher<Never, UpdateError> DefaultsLoginStorage::storeCredential(const PasswordCredential& credential) {
    return deferred([defaults = defaults_, credential] {
        try {
            return written({defaults->set(hashedPassword(credential.password), PasswordHashKey{}),
                            defaults->set(credential.username, LastUsernameKey{})});
        } catch (const Failure& problem) {
            return fail<Never>(UpdateError::internalError(problem.what()));
        }
    });
}

AnyPublisher<Never, UpdateError> DefaultsLoginStorage::deleteCredential(std::string username) {
    return deferred([defaults = defaults_, username = std::move(username)] {
        if (defaults->get(LastUsernameKey{}) != username) return empty<Never, UpdateError>();
        return written({defaults->remove(PasswordHashKey::key), defaults->remove(LastUsernameKey::key)});
    });
}

bool DefaultsLoginStorage::isStored(const PasswordCredential& credential) const {
    const auto hash = defaults_->get(PasswordHashKey{});
    return hash && defaults_->get(LastUsernameKey{}) == credential.username && isPassword(*hash, credential.password);
}

}  // namespace kestrel::host
