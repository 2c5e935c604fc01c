#pragma once

#include <kestrel/session/named_choice.h>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

/// The errors that services report. The platform form of one that carries an error or a text is described in
/// common_form.h.
namespace kestrel {

/// The cases of ReadError, without what they carry.
enum class ReadErrorCaseName : std::uint8_t {
    notFound,         ///< ReadError::notFound
    missingObjectID,  ///< ReadError::missingObjectID
    unexpectedType,   ///< ReadError::unexpectedType
    cancelled,        ///< ReadError::cancelled
    fetchError,       ///< ReadError::fetchError
    underlyingError,  ///< ReadError::underlyingError
};
template <>
inline constexpr auto enumerationForm<ReadErrorCaseName> = EnumerationForm::caseText;

/// The payload of ReadError::unexpectedType.
struct ReadErrorUnexpectedType {
    /// For developers.
    std::string explanation{};

    friend bool operator==(const ReadErrorUnexpectedType&, const ReadErrorUnexpectedType&) = default;
};

/// Why records could not be read.
class ReadError : public NamedChoice<ReadError, ReadErrorCaseName, NoPayload<0>, NoPayload<1>, ReadErrorUnexpectedType,
                                     NoPayload<3>, ErrorPayload<4>, ErrorPayload<5>> {
  public:
    /// The payload of the case of that name.
    using UnexpectedType = ReadErrorUnexpectedType;

    /// There is no such record, or the user may not see it.
    [[nodiscard]] static ReadError notFound() { return make<CaseName::notFound>(); }
    /// What was asked for has no identifier.
    [[nodiscard]] static ReadError missingObjectID() { return make<CaseName::missingObjectID>(); }
    /// What was found is of another type than what was asked for.
    [[nodiscard]] static ReadError unexpectedType(std::string explanation) {
        return make<CaseName::unexpectedType>(std::move(explanation));
    }
    /// The reading was given up.
    [[nodiscard]] static ReadError cancelled() { return make<CaseName::cancelled>(); }
    /// The store could not be read.
    [[nodiscard]] static ReadError fetchError(AnyError error) { return make<CaseName::fetchError>(std::move(error)); }
    /// Something else went wrong.
    [[nodiscard]] static ReadError underlyingError(AnyError error) {
        return make<CaseName::underlyingError>(std::move(error));
    }

    [[nodiscard]] std::optional<UnexpectedType> unexpectedType() const { return payload<UnexpectedType>(); }
    [[nodiscard]] std::optional<AnyError> fetchError() const { return errorOf<CaseName::fetchError>(); }
    [[nodiscard]] std::optional<AnyError> underlyingError() const { return errorOf<CaseName::underlyingError>(); }

    friend bool operator==(const ReadError&, const ReadError&) = default;

  private:
    friend CodingAccess;
    explicit ReadError(Variant value) : Base(std::move(value)) {}
};
static_assert(AutoCaseName<ReadError>);
/// Its own form, around that of the error that it carries.
[[nodiscard]] PlatformError platformError(const ReadError& error);

/// The cases of UpdateError, without what they carry.
enum class UpdateErrorCaseName : std::uint8_t {
    notFound,              ///< UpdateError::notFound
    deleteNotAllowed,      ///< UpdateError::deleteNotAllowed
    incompatibleRawValue,  ///< UpdateError::incompatibleRawValue
    internalError,         ///< UpdateError::internalError
    underlyingError,       ///< UpdateError::underlyingError
};
template <>
inline constexpr auto enumerationForm<UpdateErrorCaseName> = EnumerationForm::caseText;

/// The payload of UpdateError::internalError.
struct UpdateErrorInternalError {
    /// For developers.
    std::string reason{};

    friend bool operator==(const UpdateErrorInternalError&, const UpdateErrorInternalError&) = default;
};

/// Why a record could not be changed.
class UpdateError : public NamedChoice<UpdateError, UpdateErrorCaseName, NoPayload<0>, NoPayload<1>, NoPayload<2>,
                                       UpdateErrorInternalError, ErrorPayload<4>> {
  public:
    /// The payload of the case of that name.
    using InternalError = UpdateErrorInternalError;

    /// There is no such record.
    [[nodiscard]] static UpdateError notFound() { return make<CaseName::notFound>(); }
    /// The user may not delete it.
    [[nodiscard]] static UpdateError deleteNotAllowed() { return make<CaseName::deleteNotAllowed>(); }
    /// A code that stands for no case of its enumeration.
    [[nodiscard]] static UpdateError incompatibleRawValue() { return make<CaseName::incompatibleRawValue>(); }
    /// A mistake in the service.
    [[nodiscard]] static UpdateError internalError(std::string reason) {
        return make<CaseName::internalError>(std::move(reason));
    }
    /// Something else went wrong.
    [[nodiscard]] static UpdateError underlyingError(AnyError error) {
        return make<CaseName::underlyingError>(std::move(error));
    }

    [[nodiscard]] std::optional<InternalError> internalError() const { return payload<InternalError>(); }
    [[nodiscard]] std::optional<AnyError> underlyingError() const { return errorOf<CaseName::underlyingError>(); }

    friend bool operator==(const UpdateError&, const UpdateError&) = default;

  private:
    friend CodingAccess;
    explicit UpdateError(Variant value) : Base(std::move(value)) {}
};
static_assert(AutoCaseName<UpdateError>);
/// Its own form, around that of the error that it carries.
[[nodiscard]] PlatformError platformError(const UpdateError& error);

/// Why a request to the cloud failed.
class CloudError : public Choice<CloudError, ErrorPayload<0>, NoPayload<1>> {
  public:
    /// An error that has texts for the user; its platform form is that error's.
    [[nodiscard]] static CloudError localizedError(AnyError error) {
        return CloudError(ErrorPayload<0>(std::move(error)));
    }
    /// Nothing better is known.
    [[nodiscard]] static CloudError unknown() { return CloudError(NoPayload<1>{}); }

    [[nodiscard]] std::optional<AnyError> localizedError() const { return errorIn(payloadIf<ErrorPayload<0>>()); }

    friend bool operator==(const CloudError&, const CloudError&) = default;

  private:
    explicit CloudError(Variant value) : Choice(std::move(value)) {}
};
/// That of the error that it carries, unchanged; else its own.
[[nodiscard]] PlatformError platformError(const CloudError& error);

/// Why a password could not be reset.
class PasswordResetError : public Choice<PasswordResetError, ErrorPayload<0>, NoPayload<1>> {
  public:
    /// The server could not be asked.
    [[nodiscard]] static PasswordResetError networkError(AnyError error) {
        return PasswordResetError(ErrorPayload<0>(std::move(error)));
    }
    /// Nothing better is known.
    [[nodiscard]] static PasswordResetError unknownError() { return PasswordResetError(NoPayload<1>{}); }

    [[nodiscard]] std::optional<AnyError> networkError() const { return errorIn(payloadIf<ErrorPayload<0>>()); }

    friend bool operator==(const PasswordResetError&, const PasswordResetError&) = default;

  private:
    explicit PasswordResetError(Variant value) : Choice(std::move(value)) {}
};
/// Its own form, around that of the error that it carries.
[[nodiscard]] PlatformError platformError(const PasswordResetError& error);

/// Why no place was found for an address.
class GeocodeError : public Choice<GeocodeError, ErrorPayload<0>, NoPayload<1>> {
  public:
    /// The geocoder failed.
    [[nodiscard]] static GeocodeError underlyingError(AnyError error) {
        return GeocodeError(ErrorPayload<0>(std::move(error)));
    }
    /// The geocoder knows no such place.
    [[nodiscard]] static GeocodeError foundNoResult() { return GeocodeError(NoPayload<1>{}); }

    [[nodiscard]] std::optional<AnyError> underlyingError() const { return errorIn(payloadIf<ErrorPayload<0>>()); }

    friend bool operator==(const GeocodeError&, const GeocodeError&) = default;

  private:
    explicit GeocodeError(Variant value) : Choice(std::move(value)) {}
};
/// Its own form, around that of the error that it carries.
[[nodiscard]] PlatformError platformError(const GeocodeError& error);

/// Why the schema of the local database could not be migrated.
enum class SchemaMigrationError : std::uint8_t {
    backfillRegistrationFailed,  ///< the data that the new schema needs could not be asked for
    databaseUpdateFailed         ///< the database could not be changed
};

/// Why the data that a new schema adds to a user could not be filled in.
enum class BackfillUserError : std::uint8_t {
    setupFailed,      ///< it could not be begun
    unableToGetData,  ///< the server did not give the data
    retryFailed       ///< trying again failed, too
};

}  // namespace kestrel
