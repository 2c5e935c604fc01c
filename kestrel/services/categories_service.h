#pragma once

#include <kestrel/lookups/category.h>
#include <kestrel/reactive/publisher.h>
#include <kestrel/runtime/service_protocol.h>
#include <kestrel/session/service_errors.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

/// The categories that records are filed under.
class CategoriesService : public ServiceProtocol {
  public:
    /// All that are not deleted, in their order.
    [[nodiscard]] virtual AnyPublisher<std::vector<Category>, ReadError> fetchCategories() = 0;
    /// The same, now and after every change.
    [[nodiscard]] virtual AnyPublisher<std::vector<Category>> observeCategories() = 0;
    /// Adds one behind the others.
    [[nodiscard]] virtual AnyPublisher<Category, UpdateError> createCategory(std::string name) = 0;
    /// Stores it as it is given; what was stored.
    [[nodiscard]] virtual AnyPublisher<Category, UpdateError> updateCategory(const Category& category) = 0;
    /// Records keep the identifier of their category.
    [[nodiscard]] virtual AnyPublisher<Never, UpdateError> deleteCategory(const ObjectID<Category>& id) = 0;
};

template <>
class Forwarding<CategoriesService> : public CategoriesService {
  public:
    [[nodiscard]] virtual std::shared_ptr<CategoriesService> target() const = 0;

    [[nodiscard]] AnyPublisher<std::vector<Category>, ReadError> fetchCategories() override {
        return target()->fetchCategories();
    }
    [[nodiscard]] AnyPublisher<std::vector<Category>> observeCategories() override {
        return target()->observeCategories();
    }
    [[nodiscard]] AnyPublisher<Category, UpdateError> createCategory(std::string name) override {
        return target()->createCategory(std::move(name));
    }
    [[nodiscard]] AnyPublisher<Category, UpdateError> updateCategory(const Category& category) override {
        return target()->updateCategory(category);
    }
    [[nodiscard]] AnyPublisher<Never, UpdateError> deleteCategory(const ObjectID<Category>& id) override {
        return target()->deleteCategory(id);
    }
};

namespace services {
inline constexpr ServiceKey<CategoriesService> categories;
}

}  // namespace kestrel
