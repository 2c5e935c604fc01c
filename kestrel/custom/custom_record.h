#pragma once

#include <kestrel/coding/codec.h>
#include <kestrel/foundation/date.h>
#include <kestrel/foundation/read_only.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// The template of a form: its fields are the definitions that refer to it.
struct CustomRecordSetDefinition {
    static constexpr auto recordName = recordNameOf<CustomRecordSetDefinition>;
    static constexpr auto entityName = entityNameOf<CustomRecordSetDefinition>;

    ReadOnly<ObjectID<CustomRecordSetDefinition>, CustomRecordSetDefinition> customRecordSetDefinitionID;
    /// When the record was created.
    std::optional<Date> createDate{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// What the form is for, as users describe it.
    std::optional<std::string> details{};
    /// Whether it is offered for new forms.
    bool isActive{true};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What users call the form.
    std::optional<std::string> name{};
    /// Position in pick lists.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<CustomRecordSetDefinition>& objectID() const noexcept {
        return customRecordSetDefinitionID.get();
    }
    [[nodiscard]] const ObjectID<CustomRecordSetDefinition>& id() const noexcept {
        return customRecordSetDefinitionID.get();
    }
    friend bool operator==(const CustomRecordSetDefinition&, const CustomRecordSetDefinition&) = default;
};
extern template struct Codec<CustomRecordSetDefinition>;

/// What a custom field holds.
enum class CustomRecordKind : std::uint8_t {
    text = 0,           ///< one line
    multilineText = 1,  ///< a text of several lines
    number = 2,         ///< a number
    date = 3,           ///< a date
    flag = 4,           ///< yes or no
    choice = 5          ///< one of the definition's choices
};

/// A field of a form's template.
struct CustomRecordDefinition {
    static constexpr auto recordName = recordNameOf<CustomRecordDefinition>;
    static constexpr auto entityName = entityNameOf<CustomRecordDefinition>;
    /// What `kind` tells.
    using Kind = CustomRecordKind;

    ReadOnly<ObjectID<CustomRecordDefinition>, CustomRecordDefinition> customRecordDefinitionID;
    /// What may be chosen; empty but for choices.
    std::vector<std::string> choices{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Key of the template that it belongs to.
    std::optional<std::int64_t> customRecordSetDefinitionID{};
    /// The text that a new field starts with.
    std::optional<std::string> defaultValue{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// Whether it has to be filled in.
    bool isRequired{};
    /// What the field holds.
    CustomRecordKind kind{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What the field is called.
    std::optional<std::string> name{};
    /// Position in its template.
    std::int64_t order{};

    [[nodiscard]] const ObjectID<CustomRecordDefinition>& objectID() const noexcept {
        return customRecordDefinitionID.get();
    }
    [[nodiscard]] const ObjectID<CustomRecordDefinition>& id() const noexcept { return customRecordDefinitionID.get(); }
    friend bool operator==(const CustomRecordDefinition&, const CustomRecordDefinition&) = default;
};
extern template struct Codec<CustomRecordDefinition>;

/// A filled-in field of a form.
struct CustomRecord {
    static constexpr auto recordName = recordNameOf<CustomRecord>;
    static constexpr auto entityName = entityNameOf<CustomRecord>;

    ReadOnly<ObjectID<CustomRecord>, CustomRecord> customRecordID;
    /// The value as a text to show, as the store renders it for all kinds alike.
    std::optional<std::string> bridgedDisplayString{};
    /// When the record was created.
    std::optional<Date> createDate{};
    /// Key of its definition.
    std::optional<std::int64_t> customRecordDefinitionID{};
    /// Key of the form that it belongs to.
    std::optional<std::int64_t> customRecordSetID{};
    /// The value of a date.
    std::optional<Date> dateValue{};
    /// When the record was deleted, softly; absent while it lives.
    std::optional<Date> deletionDate{};
    /// A marker of the deletion.
    std::optional<std::string> deletionIdentifier{};
    /// Key of the user who deleted it.
    std::optional<std::int64_t> deletionUserID{};
    /// The value of a flag.
    std::optional<bool> flagValue{};
    /// When the record was last changed.
    std::optional<Date> modifyDate{};
    /// What the field is called, where its definition does not say.
    std::optional<std::string> name{};
    /// The value of a number.
    std::optional<double> numberValue{};
    /// Position in its form.
    std::int64_t order{};
    /// The value of a text or a choice.
    std::optional<std::string> textValue{};

    [[nodiscard]] const ObjectID<CustomRecord>& objectID() const noexcept { return customRecordID.get(); }
    [[nodiscard]] const ObjectID<CustomRecord>& id() const noexcept { return customRecordID.get(); }
    friend bool operator==(const CustomRecord&, const CustomRecord&) = default;
};
extern template struct Codec<CustomRecord>;

}  // namespace kestrel
