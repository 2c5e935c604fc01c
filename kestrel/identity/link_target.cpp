#include <kestrel/coding/wire_form.h>
#include <kestrel/identity/activity_source_id.h>
#include <kestrel/identity/link_target.h>

namespace kestrel {

KESTREL_FIELDS(AppointmentOccurrenceTarget, parentID, startDate, editScope);

namespace {

/// Tries to read the value at the cursor as a `T`; when that fails nothing is left of the attempt.
template <class T>
std::optional<T> attempt(JSONReader& reader) {
    const auto start = reader.place();
    T value = blankValue<T>();
    // Of a key given twice the last one has to count already here: an attempt that fails lets a later case win.
    bool decoded = false;
    if constexpr (std::is_same_v<T, AppointmentOccurrenceTarget>) {
        decoded = coding_detail::decodeFieldsCarefully(reader, value);
    } else {
        decoded = decodeValue(reader, value);
    }
    if (decoded) return value;
    reader.discardError();
    reader.goTo(start);
    return std::nullopt;
}

/// The name under "recordName" of the object at the cursor, which is left there. Absent when there is none.
std::optional<std::string> peekRecordName(JSONReader& reader) {
    const auto start = reader.place();
    constexpr std::string_view key = "recordName";
    JSONReader::Place place;
    std::optional<std::string> name;
    if (coding_detail::findMembers(reader, &key, 1, &place) && place.cursor != nullptr) {
        reader.goTo(place);
        std::string text;
        if (reader.read(text)) name = std::move(text);
    }
    reader.discardError();
    reader.goTo(start);
    return name;
}

/// The attempts that can succeed for a record name, in their order: of the identifiers at most the one of that name.
template <class... Payloads>
std::optional<std::variant<Payloads...>> decodeAsAny(JSONReader& reader, const std::string& recordName,
                                                     const std::variant<Payloads...>& /*cases*/) {
    std::optional<std::variant<Payloads...>> found;
    const auto attemptPayload = [&]<class P>(std::type_identity<P>) {
        if constexpr (requires { typename P::Record; }) {
            if (recordNameOf<typename P::Record> != recordName) return false;
        }
        auto value = attempt<P>(reader);
        if (!value) return false;
        found = *std::move(value);
        return true;
    };
    (void)(attemptPayload(std::type_identity<Payloads>{}) || ...);
    return found;
}

}  // namespace

std::optional<AnyObjectID> LinkTarget::baseObjectID() const {
    return match([]<class T>(const ObjectID<T>& id) -> std::optional<AnyObjectID> { return AnyObjectID(id); },
                 [](const AppointmentOccurrence&) -> std::optional<AnyObjectID> { return std::nullopt; });
}

bool Codec<LinkTarget>::encode(JSONWriter& writer, const LinkTarget& value) {
    return std::visit([&](const auto& payload) { return encodeValue(writer, payload); }, CodingAccess::variant(value));
}

bool Codec<LinkTarget>::decode(JSONReader& reader, LinkTarget& value) {
    if (reader.isObject()) {
        const std::string recordName = peekRecordName(reader).value_or(std::string());
        if (auto found = decodeAsAny(reader, recordName, CodingAccess::variant(value))) {
            value = CodingAccess::make<LinkTarget>(*std::move(found));
            return true;
        }
    }
    return reader.fail(DecodingError::Kind::typeMismatch, "Failed to decode single value container as any LinkTarget.");
}

LinkTarget Codec<LinkTarget>::blank() {
    return LinkTarget::appointment(0);
}

void Codec<LinkTarget>::hash(Hasher& hasher, const LinkTarget& value) {
    hasher.combine(value.caseIndex());
    std::visit([&](const auto& payload) { hashValue(hasher, payload); }, CodingAccess::variant(value));
}

void Codec<LinkTarget>::mirror(DebugMirror& mirror, const LinkTarget& value) {
    mirror.word("LinkTarget ");
    std::visit([&](const auto& payload) { mirrorValue(mirror, payload); }, CodingAccess::variant(value));
}

LinkTarget ActivitySourceID::linkTarget() const {
    return match([](const ObjectID<Contact>& id) { return LinkTarget::contact(id); },
                 [](const ObjectID<Company>& id) { return LinkTarget::company(id); },
                 [](const ObjectID<Task>& id) { return LinkTarget::task(id); },
                 [](const ObjectID<Timeblock>& id) { return LinkTarget::appointment(id); },
                 [](const ObjectID<Project>& id) { return LinkTarget::project(id); },
                 [](const ObjectID<Opportunity>& id) { return LinkTarget::opportunity(id); },
                 [](const ObjectID<Note>& id) { return LinkTarget::note(id); },
                 [](const ObjectID<Email>& id) { return LinkTarget::email(id); },
                 [](const ObjectID<Form>& id) { return LinkTarget::form(id); });
}

bool Codec<ActivitySourceID>::encode(JSONWriter& writer, const ActivitySourceID& value) {
    return std::visit([&](const auto& payload) { return encodeValue(writer, payload); }, CodingAccess::variant(value));
}

bool Codec<ActivitySourceID>::decode(JSONReader& reader, ActivitySourceID& value) {
    if (const auto contact = attempt<ObjectID<Contact>>(reader)) {
        value = ActivitySourceID::contact(*contact);
        return true;
    }
    return reader.fail(DecodingError::Kind::typeMismatch,
                       "Failed to decode single value container as any ActivitySourceID ObjectID.");
}

ActivitySourceID Codec<ActivitySourceID>::blank() {
    return ActivitySourceID::contact(0);
}

void Codec<ActivitySourceID>::hash(Hasher& hasher, const ActivitySourceID& value) {
    hasher.combine(value.caseIndex());
    std::visit([&](const auto& payload) { hashValue(hasher, payload); }, CodingAccess::variant(value));
}

void Codec<ActivitySourceID>::mirror(DebugMirror& mirror, const ActivitySourceID& value) {
    mirror.word("ActivitySourceID ");
    std::visit([&](const auto& payload) { mirrorValue(mirror, payload); }, CodingAccess::variant(value));
}

}  // namespace kestrel
