#pragma once

#include <kestrel/foundation/feature_environment.h>
#include <kestrel/foundation/type_name.h>
#include <kestrel/runtime/service_protocol.h>
#include <concepts>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kestrel {

class Runtime;

/// Something that installs services: a value with a name.
template <class M>
concept RuntimeModule = requires(const M& module, Runtime& runtime) {
    { module.moduleName } -> std::convertible_to<std::string_view>;
    module.registerIn(runtime);
};

/// The entry of a runtime for a protocol: a service itself, whose calls reach the implementation that is installed at
/// that moment, and keep it until they return, whatever they install. A reference to it stays good as long as the
/// runtime. A call while nothing is installed is a mistake in the program: fatal(), naming the protocol.
template <class Protocol>
class ServiceEntry final : public Forwarding<Protocol> {
  public:
    /// Installs an implementation in the place of the one before; null takes the service away.
    template <std::derived_from<Protocol> Implementation>
    ServiceEntry& operator=(std::shared_ptr<Implementation> implementation) {
        *implementation_ = std::move(implementation);
        return *this;
    }
    /// Takes the service away.
    ServiceEntry& operator=(std::nullptr_t) {
        implementation_->reset();
        return *this;
    }
    /// What is installed at that moment. fatal(), naming the protocol, when nothing is.
    [[nodiscard]] std::shared_ptr<Protocol> target() const override;

  private:
    friend class Runtime;
    explicit ServiceEntry(std::shared_ptr<Protocol>& implementation) : implementation_(&implementation) {}

    std::shared_ptr<Protocol>* implementation_;
};

/// The services of a program: one implementation a protocol, reached by typed keys.
///
///     Runtime runtime = Runtime::makeSystem();
///     runtime[services::contacts] = std::make_shared<SQLiteContacts>(database);
///     const Date now = runtime[services::systemClock].now();
///
/// The library's keys are in the namespace `kestrel::services`. Takes no locks: a program installs its services when it
/// starts, on one thread, and reads them from then on. Can be moved, which leaves references to its entries good.
class Runtime {
  public:
    /// Without any service.
    Runtime() = default;
    /// With what the modules install, in that order.
    template <RuntimeModule... Modules>
        requires(sizeof...(Modules) > 0)
    explicit Runtime(const Modules&... modules) {
        (add(modules), ...);
    }
    /// With the services of the platform: see SystemServicesModule.
    [[nodiscard]] static Runtime makeSystem();

    /// Installs what the module has.
    template <RuntimeModule Module>
    void add(const Module& module) {
        moduleNames_.emplace_back(module.moduleName);
        module.registerIn(*this);
    }
    /// Of the modules that were added, in that order.
    [[nodiscard]] const std::vector<std::string>& moduleNames() const noexcept { return moduleNames_; }

    /// The entry of that protocol, to be called or assigned to.
    template <Forwardable Protocol>
    [[nodiscard]] ServiceEntry<Protocol>& operator[](ServiceKey<Protocol> /*key*/) {
        return slot<Protocol>().entry;
    }
    /// The implementation of that protocol, good until another one is installed. fatal() naming the protocol when it
    /// was never installed.
    template <class Protocol>
    [[nodiscard]] Protocol& operator[](ServiceKey<Protocol> key) const {
        return *required(find(key));
    }
    /// The implementation; null when none is installed.
    template <class Protocol>
    [[nodiscard]] std::shared_ptr<Protocol> find(ServiceKey<Protocol> /*key*/) const noexcept {
        const auto found = slots_.find(typeid(Protocol));
        if (found == slots_.end()) return nullptr;
        return static_cast<const Slot<Protocol>&>(*found->second).implementation;
    }
    /// Installs an implementation in the place of the one before; null takes the service away. Also for a host's own
    /// protocols that forward nothing.
    template <class Protocol, std::derived_from<Protocol> Implementation>
    void install(ServiceKey<Protocol> /*key*/, std::shared_ptr<Implementation> implementation) {
        slot<Protocol>().implementation = std::move(implementation);
    }
    /// The names of the protocols that are installed, in alphabetical order.
    [[nodiscard]] std::vector<std::string> installedProtocols() const;

    /// What is switched on in this process; not a matter of this runtime alone.
    [[nodiscard]] std::shared_ptr<const FeatureEnvironment> featureEnvironment() const {
        return FeatureEnvironment::current();
    }

  private:
    template <class Protocol>
    friend class ServiceEntry;

    struct AnySlot {
        AnySlot() = default;
        AnySlot(const AnySlot&) = delete;
        AnySlot& operator=(const AnySlot&) = delete;
        virtual ~AnySlot() = default;
        /// Empty when nothing is installed.
        [[nodiscard]] virtual std::string_view installedProtocol() const noexcept = 0;
    };
    template <class Protocol>
    struct PlainSlot : AnySlot {
        [[nodiscard]] std::string_view installedProtocol() const noexcept override {
            return implementation == nullptr ? std::string_view() : typeName<Protocol>();
        }
        std::shared_ptr<Protocol> implementation{};
    };
    template <class Protocol>
    struct Slot final : PlainSlot<Protocol> {};
    template <Forwardable Protocol>
    struct Slot<Protocol> final : PlainSlot<Protocol> {
        ServiceEntry<Protocol> entry{this->implementation};
    };

    template <class Protocol>
    [[nodiscard]] Slot<Protocol>& slot() {
        auto& slot = slots_[typeid(Protocol)];
        if (slot == nullptr) slot = std::make_unique<Slot<Protocol>>();
        return static_cast<Slot<Protocol>&>(*slot);
    }
    template <class Protocol>
    [[nodiscard]] static std::shared_ptr<Protocol> required(std::shared_ptr<Protocol> implementation) {
        if (implementation == nullptr) stopForMissing(typeName<Protocol>());
        return implementation;
    }
    [[noreturn]] static void stopForMissing(std::string_view protocol);

    std::unordered_map<std::type_index, std::unique_ptr<AnySlot>> slots_;
    std::vector<std::string> moduleNames_;
};

template <class Protocol>
std::shared_ptr<Protocol> ServiceEntry<Protocol>::target() const {
    return Runtime::required(*implementation_);
}

}  // namespace kestrel
