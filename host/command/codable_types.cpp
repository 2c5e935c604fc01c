#include <host/command/codable_types.h>
#include <kestrel/access/permissions.h>
#include <kestrel/activity/activity_item.h>
#include <kestrel/activity/email_link.h>
#include <kestrel/activity/next_activity.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/boards/board_config.h>
#include <kestrel/boards/opportunity_state.h>
#include <kestrel/coding/json.h>
#include <kestrel/foundation/attributed_string.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/rgba_color.h>
#include <kestrel/identity/activity_source_id.h>
#include <kestrel/identity/occurrence_ids.h>
#include <kestrel/records/name.h>
#include <kestrel/records/partial_date.h>
#include <kestrel/relationships/contact_link.h>
#include <kestrel/session/all_records.h>
#include <kestrel/session/login_error.h>
#include <kestrel/session/login_state.h>
#include <kestrel/session/schema_migration_state.h>
#include <kestrel/session/service_errors.h>
#include <kestrel/session/session_state.h>

#include <algorithm>
#include <cstdint>

namespace kestrel::host {
namespace {

template <class T>
Recoded recode(std::string_view document, const CodingOptions& options) {
    const auto value = decodeJSON<T>(document, options);
    if (!value) {
        const DecodingError& error = value.error();
        return std::unexpected(CodingFailure{.kind = std::string(caseName(error.kind)),
                                             .path = error.codingPath,
                                             .description = error.description,
                                             .offset = error.position.offset,
                                             .message = error.message()});
    }
    auto json = encodeJSON(*value, options);
    if (json) return *std::move(json);
    const EncodingError& error = json.error();
    return std::unexpected(CodingFailure{.kind = std::string(caseName(error.kind)),
                                         .path = error.codingPath,
                                         .description = error.description,
                                         .message = error.message()});
}

class TypeTable {
  public:
    TypeTable() {
        add<bool>("Bool");
        add<Data>("Data");
        add<Date>("Date");
        add<double>("Double");
        add<std::int64_t>("Int");
        add<std::string>("String");
        recordTypes.forEach([&]<class Record>(const RecordNames<Record>& names) {
            add<ObjectID<Record>>("ObjectID<" + std::string(names.recordName) + ">");
        });
        const auto firstOther = static_cast<std::ptrdiff_t>(types_.size());
        recordTypes.forEach([&]<class Record>(const RecordNames<Record>& names) { add<Record>(names.recordName); });
        add<ActivityItemID>("ActivityItemID");
        add<ActivitySourceID>("ActivitySourceID");
        add<AppointmentID>("AppointmentID");
        add<AppointmentOccurrenceTarget>("AppointmentOccurrenceTarget");
        add<AttributedString>("AttributedString");
        add<AvatarInfo>("AvatarInfo");
        add<BoardCardData>("BoardCardData");
        add<BoardColumnData>("BoardColumnData");
        add<BoardColumnHeaderData>("BoardColumnHeaderData");
        add<BoardConfig>("BoardConfig");
        add<BoardData>("BoardData");
        add<BoardUser>("BoardUser");
        add<ContactLink>("ContactLink");
        add<ContactPriority>("ContactPriority");
        add<EditAnyRoleType>("EditAnyRoleType");
        add<EditRelationshipType>("EditRelationshipType");
        add<ElectronicAddressKind>("ElectronicAddressKind");
        add<EmailAddress>("EmailAddress");
        add<EmailItem>("EmailItem");
        add<EmailLink>("EmailLink");
        add<EventOccurrence>("EventOccurrence");
        add<FileItem>("FileItem");
        add<FormFieldItem>("FormFieldItem");
        add<FormItem>("FormItem");
        add<LinkTarget>("LinkTarget");
        add<LoginError::CaseName>("LoginError.CaseName");
        add<LoginState::CaseName>("LoginState.CaseName");
        add<Name>("Name");
        add<NextActivity>("NextActivity");
        add<NextActivityType>("NextActivityType");
        add<NoteItem>("NoteItem");
        add<OccurrenceEditScope>("OccurrenceEditScope");
        add<OpportunityBoardCardData>("OpportunityBoardCardData");
        add<OpportunityBoardConfig>("OpportunityBoardConfig");
        add<OpportunityBoardFilter>("OpportunityBoardFilter");
        add<OpportunityState>("OpportunityState");
        add<PartialDate>("PartialDate");
        add<Permissions>("Permissions");
        add<PermissionSet>("PermissionSet");
        add<PipelineBoardCardPasteboardData>("PipelineBoardCardPasteboardData");
        add<PipelineBoardDateRange>("PipelineBoardDateRange");
        add<PipelineBoardObjectID>("PipelineBoardObjectID");
        add<PipelineBoardSortDescriptor>("PipelineBoardSortDescriptor");
        add<PipelineBoardSortKey>("PipelineBoardSortKey");
        add<PipelineBoardSortOrder>("PipelineBoardSortOrder");
        add<ProjectBoardCardData>("ProjectBoardCardData");
        add<ProjectBoardConfig>("ProjectBoardConfig");
        add<ProjectBoardFilter>("ProjectBoardFilter");
        add<ReadError::CaseName>("ReadError.CaseName");
        add<RGBAColor>("RGBAColor");
        add<RoleTypeAppliesTo>("RoleTypeAppliesTo");
        add<SchemaMigrationState::CaseName>("SchemaMigrationState.CaseName");
        add<SessionState::CaseName>("SessionState.CaseName");
        add<SocialProfile>("SocialProfile");
        add<TaskID>("TaskID");
        add<TaskItem>("TaskItem");
        add<TaskOccurrence>("TaskOccurrence");
        add<TextAttributes>("TextAttributes");
        add<TextBody>("TextBody");
        add<TimeblockItem>("TimeblockItem");
        add<TimeblockOccurrence>("TimeblockOccurrence");
        add<UpdateError::CaseName>("UpdateError.CaseName");
        add<URLAddress>("URLAddress");
        add<URLReferenceItem>("URLReferenceItem");
        std::ranges::sort(types_.begin() + firstOther, types_.end(), {}, &CodableType::name);
    }

    [[nodiscard]] const std::vector<CodableType>& types() const { return types_; }

  private:
    template <class T>
    void add(std::string_view name) {
        types_.push_back({.name = std::string(name), .value = &recode<T>, .array = &recode<std::vector<T>>});
    }
    std::vector<CodableType> types_;
};

}  // namespace

const std::vector<CodableType>& codableTypes() {
    static const TypeTable table;
    return table.types();
}

Recoder recoderOf(std::string_view typeName) {
    const bool isArray = typeName.starts_with('[') && typeName.ends_with(']');
    if (isArray) typeName = typeName.substr(1, typeName.size() - 2);
    const auto found = std::ranges::find(codableTypes(), typeName, &CodableType::name);
    if (found == codableTypes().end()) return nullptr;
    return isArray ? found->array : found->value;
}

}  // namespace kestrel::host
