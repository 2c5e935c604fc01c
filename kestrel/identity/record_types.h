#pragma once

#include <concepts>
#include <string_view>
#include <type_traits>

/// The register of record types: every record of the library by its two names, and nothing else. An identifier of a
/// record can thus be coded, printed and told apart where the record itself is not known; tools walk all types here.
namespace kestrel {

/// A record type's names. `recordName` stands in the keyed form of identifiers; `entityName` names the data-store
/// entity that holds the records, and stands in the text of identifiers. They differ for companies, which the store
/// calls organisations, and for the type-erased records.
template <class Record>
struct RecordNames {
    /// The record type, which need not be complete.
    using Type = Record;

    /// In keyed identifiers: "Company".
    std::string_view recordName;
    /// In the store and in the text of identifiers: "Organization". The record name, unless given.
    std::string_view entityName{recordName};
};

/// Record types by their names. The library has one, `recordTypes`.
template <class... Entries>
struct RecordRegister : Entries... {
    /// Calls `visit` with the names of every record type, in alphabetical order of the types.
    template <class Visitor>
    constexpr void forEach(Visitor&& visit) const {
        (visit(static_cast<const Entries&>(*this)), ...);
    }
    /// Whether the type is registered.
    template <class Record>
    static constexpr bool contains = (std::is_same_v<Record, typename Entries::Type> || ...);
};
/// Of these record types.
template <class... Entries>
RecordRegister(Entries...) -> RecordRegister<Entries...>;

/// The record types of the library, in alphabetical order. Complete they are with <kestrel/session/all_records.h>.
inline constexpr RecordRegister recordTypes{
    RecordNames<struct AlertObject>{"AlertObject"},
    RecordNames<struct AnyElectronicAddress>{"AnyElectronicAddress", "ElectronicAddress"},
    RecordNames<struct AnyLabel>{"AnyLabel", "Label"},
    RecordNames<struct AnyRelationship>{"AnyRelationship", "Relationship"},
    RecordNames<struct AnyRole>{"AnyRole", "Role"},
    RecordNames<struct AnyRoleType>{"AnyRoleType", "RoleType"},
    RecordNames<struct Category>{"Category"},
    RecordNames<struct Company>{"Company", "Organization"},
    RecordNames<struct CompanyType>{"CompanyType", "OrganizationType"},
    RecordNames<struct Contact>{"Contact"},
    RecordNames<struct CustomRecord>{"CustomRecord"},
    RecordNames<struct CustomRecordDefinition>{"CustomRecordDefinition"},
    RecordNames<struct CustomRecordSetDefinition>{"CustomRecordSetDefinition"},
    RecordNames<struct DatabasePreference>{"DatabasePreference"},
    RecordNames<struct Email>{"Email"},
    RecordNames<struct EmailMessageStatus>{"EmailMessageStatus"},
    RecordNames<struct ExternalInvitation>{"ExternalInvitation"},
    RecordNames<struct ExternalInvitationConfig>{"ExternalInvitationConfig"},
    RecordNames<struct ExternalInvitationRecipient>{"ExternalInvitationRecipient"},
    RecordNames<struct ExtraFieldsNames>{"ExtraFieldsNames"},
    RecordNames<struct ExtraVInfo>{"ExtraVInfo"},
    RecordNames<struct FileAttachment>{"FileAttachment"},
    RecordNames<struct Form>{"Form"},
    RecordNames<struct GeoAddress>{"GeoAddress"},
    RecordNames<struct Group>{"Group"},
    RecordNames<struct ImageAsset>{"ImageAsset"},
    RecordNames<struct IndustryType>{"IndustryType"},
    RecordNames<struct Keyword>{"Keyword"},
    RecordNames<struct MeetingHistory>{"MeetingHistory"},
    RecordNames<struct MeetingInvite>{"MeetingInvite"},
    RecordNames<struct Note>{"Note"},
    RecordNames<struct Opportunity>{"Opportunity"},
    RecordNames<struct OpportunityStateReason>{"OpportunityStateReason"},
    RecordNames<struct OpportunityType>{"OpportunityType"},
    RecordNames<struct Phone>{"Phone"},
    RecordNames<struct Pipeline>{"Pipeline"},
    RecordNames<struct PipelineDefinition>{"PipelineDefinition"},
    RecordNames<struct PipelineStage>{"PipelineStage"},
    RecordNames<struct PipelineStageDefinition>{"PipelineStageDefinition"},
    RecordNames<struct PipelineStageHistory>{"PipelineStageHistory"},
    RecordNames<struct Project>{"Project"},
    RecordNames<struct RegionType>{"RegionType"},
    RecordNames<struct RelationshipType>{"RelationshipType"},
    RecordNames<struct Reminder>{"Reminder"},
    RecordNames<struct RepeatEntry>{"RepeatEntry"},
    RecordNames<struct RepeatExceptionEntry>{"RepeatExceptionEntry"},
    RecordNames<struct Task>{"Task"},
    RecordNames<struct TaskException>{"TaskException"},
    RecordNames<struct TaskList>{"TaskList"},
    RecordNames<struct Team>{"Team"},
    RecordNames<struct Timeblock>{"Timeblock"},
    RecordNames<struct TimeblockException>{"TimeblockException"},
    RecordNames<struct URLReference>{"URLReference"},
    RecordNames<struct User>{"User"},
    RecordNames<struct VisibilityPreset>{"VisibilityPreset"},
};

/// A record type of the library.
template <class T>
concept RegisteredRecord = decltype(recordTypes)::contains<T>;

/// A record's own name: of the register, or for a host's own record type what the type says.
template <class T>
inline constexpr std::string_view recordNameOf = [] {
    if constexpr (RegisteredRecord<T>) {
        return static_cast<const RecordNames<T>&>(recordTypes).recordName;
    } else {
        return std::string_view(T::recordName);
    }
}();

/// The name of the data-store entity that holds a record.
template <class T>
inline constexpr std::string_view entityNameOf = [] {
    if constexpr (RegisteredRecord<T>) {
        return static_cast<const RecordNames<T>&>(recordTypes).entityName;
    } else {
        return std::string_view(T::entityName);
    }
}();

/// A record: it has its two names and an identifier.
template <class T>
concept BaseRecord = requires(const T& record) {
    { T::recordName } -> std::convertible_to<std::string_view>;
    { T::entityName } -> std::convertible_to<std::string_view>;
    record.objectID();
};

}  // namespace kestrel
