#pragma once

#include <kestrel/identity/object_id.h>
#include <kestrel/identity/record_types.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "coded_contract.h"

namespace contract {

// Fields that many records have in common.
inline const std::string deletion = " deletionDate:date? deletionIdentifier:string? deletionUserID:int? ";
inline const std::string extraTexts =
    " extra1:string? extra10:string? extra11:string? extra12:string? extra2:string? extra3:string? extra4:string? "
    "extra5:string? extra6:string? extra7:string? extra8:string? extra9:string? ";
inline const std::string extras = extraTexts + " extraDate1:date? extraDate2:date? extraDate3:date? extraDate4:date? ";
inline const std::string listEntry =
    " createDate:date?" + deletion + "isActive:bool modifyDate:date? name:string? order:int ";

/// The contract of one record type, to be checked.
struct RecordContract {
    std::string recordName;
    std::function<void()> check;

    /// For the names of tests.
    friend void PrintTo(const RecordContract& contract, std::ostream* out) { *out << contract.recordName; }
};

/// Whether a member of a record can be read and not be assigned to.
template <class Record, class Member>
consteval bool isReadOnly(Member Record::* /*member*/) {
    using Place = decltype((std::declval<Record&>().*std::declval<Member Record::*>()));
    if constexpr (requires { typename Member::Value; }) {
        return !std::is_assignable_v<Place, Member> && !std::is_assignable_v<Place, typename Member::Value>;
    } else {
        return false;
    }
}
template <auto... members>
inline constexpr bool areReadOnly = (isReadOnly(members) && ...);

/// That of a record: that of its fields, and that its identifier is its own and read-only.
template <class Record, auto identifier>
RecordContract recordContract(const std::string& recordName, const std::string& entityName, const std::string& fields) {
    const auto check = [=] {
        static_assert(kestrel::BaseRecord<Record>);
        EXPECT_EQ(Record::recordName, recordName);
        EXPECT_EQ(Record::entityName, entityName);
        expectCodedAs<Record>(fields);
        static_assert(areReadOnly<identifier>);
        static_assert(
            std::is_same_v<decltype((std::declval<const Record&>().objectID())), const kestrel::ObjectID<Record>&>);
        static_assert(std::is_nothrow_move_constructible_v<Record> && std::is_copy_assignable_v<Record>);

        Record one{kestrel::ObjectID<Record>(1)};
        Record two{kestrel::ObjectID<Record>(2)};
        std::swap(one, two);
        EXPECT_EQ(one.id(), kestrel::ObjectID<Record>(2)) << "whole records still swap";
        const auto unsaved = kestrel::encodeJSON(Record{kestrel::ObjectID<Record>()});
        ASSERT_FALSE(unsaved.has_value());
        EXPECT_EQ(unsaved.error().codingPath.keys().size(), 1U);
        EXPECT_EQ(unsaved.error().description,
                  "Cannot encode a .new ObjectID using Encodable. Persist the record first.");
    };
    return {recordName, check};
}

// The records of the library, in four parts.
[[nodiscard]] std::vector<RecordContract> contractsOfRecords();
[[nodiscard]] std::vector<RecordContract> contractsOfPipelinesAndLists();
[[nodiscard]] std::vector<RecordContract> contractsOfPeopleAndActivity();
[[nodiscard]] std::vector<RecordContract> contractsOfSessionAndAlerts();

}  // namespace contract
