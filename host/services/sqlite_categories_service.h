#pragma once

#include <host/services/host_context.h>
#include <kestrel/services/categories_service.h>
#include <memory>
#include <utility>

namespace kestrel::host {

/// The categories of a database. They are under no access control: whoever is signed in may change them, and delete
/// them unless restricted from deleting. Records carry a copy of their category, to show its name and colour; a change
/// reaches all of them.
class SQLiteCategoriesService final : public CategoriesService {
  public:
    explicit SQLiteCategoriesService(std::shared_ptr<HostContext> context) : context_(std::move(context)) {}

    [[nodiscard]] AnyPublisher<std::vector<Category>, ReadError> fetchCategories() override;
    /// Nothing is sent while the database cannot be read.
    [[nodiscard]] AnyPublisher<std::vector<Category>> observeCategories() override;
    [[nodiscard]] AnyPublisher<Category, UpdateError> createCategory(std::string name) override;
    /// Dated with the change, unless it says nothing new; its creation and deletion stay as they were.
    [[nodiscard]] AnyPublisher<Category, UpdateError> updateCategory(const Category& category) override;
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteCategory(const ObjectID<Category>& id) override;

  private:
    std::shared_ptr<HostContext> context_;
};

}  // namespace kestrel::host
