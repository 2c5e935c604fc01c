#include <kestrel/localization/localized.h>
#include <kestrel/records/extra_fields_namer.h>

#include <array>

namespace kestrel {
namespace {

using Name = std::optional<std::string> ExtraFieldsNames::*;

constexpr std::array<Name, 12> fieldNames{
    &ExtraFieldsNames::extra1, &ExtraFieldsNames::extra2,  &ExtraFieldsNames::extra3,  &ExtraFieldsNames::extra4,
    &ExtraFieldsNames::extra5, &ExtraFieldsNames::extra6,  &ExtraFieldsNames::extra7,  &ExtraFieldsNames::extra8,
    &ExtraFieldsNames::extra9, &ExtraFieldsNames::extra10, &ExtraFieldsNames::extra11, &ExtraFieldsNames::extra12};
constexpr std::array<Name, 4> dateNames{&ExtraFieldsNames::extraDate1, &ExtraFieldsNames::extraDate2,
                                        &ExtraFieldsNames::extraDate3, &ExtraFieldsNames::extraDate4};

}  // namespace

ExtraFieldsNamer ExtraFieldsNames::namer() const {
    return ExtraFieldsNamer(*this);
}

std::vector<NamedExtraField> ExtraFieldsNamer::nameFields(Fields<std::string> values) const {
    std::vector<NamedExtraField> named;
    std::size_t index = 0;
    for (const auto* value : values) {
        const Name name = fieldNames[index++];
        if (!*value) continue;
        const bool isNamed = names_ && (*names_).*name;
        named.push_back({isNamed ? *((*names_).*name)
                                 : localized("Extra Field %@", "Default Extra Field Name, 1: The index as an integer",
                                             {std::to_string(index)}),
                         **value});
    }
    return named;
}

std::vector<NamedExtraDate> ExtraFieldsNamer::nameDates(Fields<Date> dates) const {
    std::vector<NamedExtraDate> named;
    std::size_t index = 0;
    for (const auto* date : dates) {
        const Name name = dateNames[index++];
        if (!*date) continue;
        const bool isNamed = names_ && (*names_).*name;
        named.push_back({isNamed ? *((*names_).*name)
                                 : localized("Extra Date %@", "Default Extra Date Name, 1: The index as an integer",
                                             {std::to_string(index)}),
                         **date});
    }
    return named;
}

}  // namespace kestrel
