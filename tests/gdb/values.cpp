#include <kestrel/activity/text_body.h>
#include <kestrel/foundation/data.h>
#include <kestrel/foundation/rgba_color.h>
#include <kestrel/foundation/url.h>
#include <kestrel/foundation/uuid.h>
#include <kestrel/identity/any_object_id.h>
#include <kestrel/identity/occurrence_ids.h>
#include <kestrel/records/company.h>
#include <kestrel/records/contact.h>
#include <kestrel/relationships/contact_role.h>
#include <kestrel/relationships/relationship.h>
#include <kestrel/session/login_error.h>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>

// What the debugger is asked to show. expected.txt says how each value has to look.

namespace outside {

/// A record type of a host's own.
struct Vehicle {
    static constexpr std::string_view recordName = "Vehicle";
    static constexpr std::string_view entityName = "Vehicle";

    kestrel::ReadOnly<kestrel::ObjectID<Vehicle>, Vehicle> vehicleID;
    std::optional<std::string> plate{};
    std::vector<std::string> drivers{};
};

}  // namespace outside

using namespace kestrel;

// NOLINTBEGIN: everything here is read by the debugger alone.
#pragma GCC diagnostic ignored "-Wunused-variable"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"

/// Memory that no value was ever made in.
template <class T>
struct Garbage {
    alignas(T) std::array<std::byte, sizeof(T)> bytes;
    T& value = *reinterpret_cast<T*>(bytes.data());

    explicit Garbage(int byte) { std::memset(bytes.data(), byte, sizeof(T)); }
};

__attribute__((noinline)) void look(const Contact& person, const std::optional<Date>& day) {
    asm volatile("" : : "r"(&person), "r"(&day) : "memory");
}

void makeValues() {
    // Identifiers.
    const ObjectID<Contact> saved = 12;
    const ObjectID<Company> negative = -7;
    const ObjectID<Contact> fresh(ObjectIDStorage::new_(UUID(0x0123456789abcdef, 0xfedcba9876543210)));
    const ObjectID<Contact> temporary{ObjectIdentifier(std::uintptr_t{0xbeef})};
    const ObjectIDStorage storage = ObjectIDStorage::persistent(5);
    const AnyObjectID any = ObjectID<Company>(7);
    const auto task = TaskID::task(3);
    const auto occurrence = TaskID::taskOccurrence(3, Date(6.25));
    const auto event = AppointmentID::event("standup");

    // Small values.
    const UUID uuid(1, 2);
    const Date reference(0);
    const Date early(-1e8 + 0.5);
    const Date past = Date::distantPast();
    const Date future = Date::distantFuture();
    const Date late(1e12);
    const Date never(std::numeric_limits<double>::infinity());
    const PartialDate birthday = PartialDate::make(1815, 12, 10);
    const PartialDate yearly = PartialDate::make({}, 2, 29);
    const Data empty;
    const Data text = Data::fromText("Grace Hopper");
    const Data binary{{std::byte{0}, std::byte{1}, std::byte{254}, std::byte{255}}};
    const Data large{std::vector<std::byte>(5'000)};
    const RGBAColor orange{1, 0.5, 0, 1};
    const RGBAColor shade{0, 0, 0, 0.25};
    const URL url = URL::parse("https://example.org/a").value();

    // Choices.
    const TextBody body = TextBody::html("<p>Hello</p>");
    const LoginError refused = LoginError::invalidToken();
    const LoginError failed = LoginError::localizedError(PlatformError{.domain = "HTTP", .code = 404});
    const auto missing = RelationshipDestination::missingDestination();

    // Records.
    Contact contact{.contactID = 12,
                    .anniversaryDay = 3,
                    .createDate = Date(725'000'000),
                    .firstName = "Ada",
                    .lastName = "Feldman"};
    contact.nickname = "";
    contact.priority = ContactPriority::p5;
    contact.keywords.push_back({.keywordID = 3, .name = "Mathematics"});
    contact.permissions.giveReadAccess(7);
    const RoleDestination destination = RoleDestination::company({.organizationID = 7});
    const outside::Vehicle vehicle{.vehicleID = 3, .plate = "K 12"};
    const Shared<Keyword> shared = Keyword{.keywordID = 4};
    const Contact& person = contact;
    const ReadOnly<std::string, Contact> constant(std::string("constant"));
    const ReadOnly<std::int64_t, Contact> number(std::int64_t{42});
    const std::vector<Keyword> keywords{{.keywordID = 1}, {.keywordID = 2}};

    look(contact, contact.createDate.get());
}

void makeWhatCannotBe() {
    const PartialDate impossible = PartialDate::make(1900, 13, 40);
    const Garbage<Date> notANumber(0xff);
    const Garbage<ObjectID<Contact>> identifierGarbage(0x55);
    const Garbage<AnyObjectID> anyGarbage(0x55);
    const Garbage<TaskID> choiceGarbage(0x55);
    Garbage<Data> dataGarbage(0);
    dataGarbage.bytes[0] = std::byte{1};
    const Garbage<Contact> recordOfZeros(0);
    const Garbage<Contact> recordGarbage(0x55);

    makeValues();
}
// NOLINTEND

int main() {
    makeWhatCannotBe();
}
