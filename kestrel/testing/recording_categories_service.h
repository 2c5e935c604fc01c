#pragma once

#include <kestrel/services/categories_service.h>
#include <kestrel/testing/stub.h>
#include <utility>

namespace kestrel {

/// A CategoriesService that answers as a test prepares it, and keeps what it is asked.
class RecordingCategoriesService final : public CategoriesService {
  public:
    struct Stubs {
        Stub<AnyPublisher<std::vector<Category>, ReadError>()> fetchCategories;
        Stub<AnyPublisher<std::vector<Category>>()> observeCategories;
        Stub<AnyPublisher<Category, UpdateError>(std::string)> createCategory;
        Stub<AnyPublisher<Category, UpdateError>(const Category&)> updateCategory;
        Stub<AnyPublisher<Never, UpdateError>(const ObjectID<Category>&)> deleteCategory;
    };
    mutable Stubs on{};

    [[nodiscard]] AnyPublisher<std::vector<Category>, ReadError> fetchCategories() override {
        return on.fetchCategories();
    }
    [[nodiscard]] AnyPublisher<std::vector<Category>> observeCategories() override { return on.observeCategories(); }
    [[nodiscard]] AnyPublisher<Category, UpdateError> createCategory(std::string name) override {
        return on.createCategory(std::move(name));
    }
    [[nodiscard]] AnyPublisher<Category, UpdateError> updateCategory(const Category& category) override {
        return on.updateCategory(category);
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteCategory(const ObjectID<Category>& id) override {
        return on.deleteCategory(id);
    }
};

}  // namespace kestrel
