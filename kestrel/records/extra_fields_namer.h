#pragma once

#include <kestrel/foundation/date.h>
#include <kestrel/records/extra_fields_names.h>
#include <concepts>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

/// A record with the twelve extra texts and four extra dates.
template <class Record>
concept HasExtraFields = requires(const Record& record) {
    { record.extra1 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra2 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra3 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra4 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra5 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra6 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra7 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra8 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra9 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra10 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra11 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extra12 } -> std::convertible_to<const std::optional<std::string>&>;
    { record.extraDate1 } -> std::convertible_to<const std::optional<Date>&>;
    { record.extraDate2 } -> std::convertible_to<const std::optional<Date>&>;
    { record.extraDate3 } -> std::convertible_to<const std::optional<Date>&>;
    { record.extraDate4 } -> std::convertible_to<const std::optional<Date>&>;
};

/// An extra text with its name.
struct NamedExtraField {
    /// The name in the names record, which may be empty; without one the default name.
    std::string name{};
    /// The text of the record, which may be empty.
    std::string value{};

    friend bool operator==(const NamedExtraField&, const NamedExtraField&) = default;
};

/// An extra date with its name.
struct NamedExtraDate {
    /// The name in the names record, which may be empty; without one the default name.
    std::string name{};
    /// That of the record.
    Date date{};

    friend bool operator==(const NamedExtraDate&, const NamedExtraDate&) = default;
};

/// Pairs a record's filled-in extra fields with their names: those of a names record, and "Extra Field 3" in the user's
/// language for a field that has none.
class ExtraFieldsNamer {
  public:
    /// By these names.
    explicit ExtraFieldsNamer(ExtraFieldsNames names) : names_(std::move(names)) {}
    /// Without a names record: every field has its default name.
    [[nodiscard]] static ExtraFieldsNamer empty() { return {}; }

    /// The texts that are present, from field 1 to 12. An empty text is present; so is an empty name.
    [[nodiscard]] std::vector<NamedExtraField> namedFields(const HasExtraFields auto& record) const {
        return nameFields({&record.extra1, &record.extra2, &record.extra3, &record.extra4, &record.extra5,
                           &record.extra6, &record.extra7, &record.extra8, &record.extra9, &record.extra10,
                           &record.extra11, &record.extra12});
    }
    /// The dates that are present, from date 1 to 4.
    [[nodiscard]] std::vector<NamedExtraDate> namedDates(const HasExtraFields auto& record) const {
        return nameDates({&record.extraDate1, &record.extraDate2, &record.extraDate3, &record.extraDate4});
    }

    friend bool operator==(const ExtraFieldsNamer&, const ExtraFieldsNamer&) = default;

  private:
    template <class T>
    using Fields = std::initializer_list<const std::optional<T>*>;

    ExtraFieldsNamer() = default;
    [[nodiscard]] std::vector<NamedExtraField> nameFields(Fields<std::string> values) const;
    [[nodiscard]] std::vector<NamedExtraDate> nameDates(Fields<Date> dates) const;

    std::optional<ExtraFieldsNames> names_;
};

}  // namespace kestrel
