#include <fmt/format.h>
#include <host/services/service_results.h>
#include <host/services/sqlite_categories_service.h>
#include <host/store/record_lists.h>

#include <algorithm>

namespace kestrel::host {
namespace {

std::vector<Category> categoriesOf(HostContext& context) {
    return context.read([](ReadableRecords& records, const Directory&) { return listedBy(records, &Category::order); });
}

/// Makes the category what the records of a type that are filed under it show.
template <class Record>
void refreshCopies(RecordWriter& records, const Category& category) {
    SQLite::Statement filed(
        records.database(),
        fmt::format(R"(SELECT id FROM "{}" WHERE record ->> '$.category.categoryID.primaryKey' = ? ORDER BY id)",
                    entityNameOf<Record>));
    filed.bind(1, category.objectID().value().value());
    std::vector<ObjectID<Record>> ids;
    while (filed.executeStep())
        ids.emplace_back(filed.getColumn(0).getInt64());
    for (const auto& id : ids) {
        auto record = records.findAny(id);
        if (!record || record->category == category) continue;
        record->category = category;
        records.update(*record);
    }
}

}  // namespace

AnyPublisher<std::vector<Category>, ReadError> SQLiteCategoriesService::fetchCategories() {
    return reading([context = context_] { return categoriesOf(*context); });
}

AnyPublisher<std::vector<Category>> SQLiteCategoriesService::observeCategories() {
    return observingAlways(
        context_, [context = context_] { return categoriesOf(*context); },
        [] { return std::optional<std::vector<Category>>(); });
}

AnyPublisher<Category, UpdateError> SQLiteCategoriesService::createCategory(std::string name) {
    return updating([context = context_, name = std::move(name)] {
        return context->write([&](RecordWriter& records) {
            if (name.empty()) throw Refusal("a category needs a name");
            const auto others = listedBy(records, &Category::order);
            const Category category{.categoryID = records.newID<Category>(),
                                    .createDate = records.now(),
                                    .modifyDate = records.now(),
                                    .name = name,
                                    .order = others.empty() ? 0 : others.back().order + 1};
            records.insert(category);
            return category;
        });
    });
}

AnyPublisher<Category, UpdateError> SQLiteCategoriesService::updateCategory(const Category& category) {
    return updating([context = context_, category = category] {
        return context->write([&](RecordWriter& records) {
            const Category before = records.changeable(category.objectID());
            Category stored = category;
            stored.createDate = before.createDate;
            stored.deletionDate = before.deletionDate;
            stored.deletionIdentifier = before.deletionIdentifier;
            stored.deletionUserID = before.deletionUserID;
            stored.modifyDate = before.modifyDate;
            if (stored == before) return stored;
            stored.modifyDate = records.now();
            records.update(stored);
            StoredRecords::forEach([&]<class Record>() {
                if constexpr (requires(const Record& record) {
                                  { record.category } -> std::convertible_to<const std::optional<Category>&>;
                              }) {
                    refreshCopies<Record>(records, stored);
                }
            });
            return stored;
        });
    });
}

AnyPublisher<Never, UpdateError> SQLiteCategoriesService::deleteCategory(const ObjectID<Category>& id) {
    return completing([context = context_, id] {
        context->write([&](RecordWriter& records) {
            Category category = records.deletable(id);
            records.markDeleted(category);
            records.update(category);
        });
    });
}

}  // namespace kestrel::host
