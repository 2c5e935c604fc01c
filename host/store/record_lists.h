#pragma once

#include <host/store/readable_records.h>
#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

namespace kestrel::host {

/// Every record of a type that lives, ordered by a member and then by key.
template <class Record, class Member>
[[nodiscard]] std::vector<Record> listedBy(ReadableRecords& records, Member Record::* member) {
    std::vector<Record> list;
    records.forEach<Record>([&](Record record) { list.push_back(std::move(record)); });
    std::ranges::sort(list, [member](const Record& a, const Record& b) {
        return std::tie(a.*member, a.objectID()) < std::tie(b.*member, b.objectID());
    });
    return list;
}

}  // namespace kestrel::host
