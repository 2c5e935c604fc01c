#pragma once

namespace kestrel {

/// What every protocol derives from: an abstract class whose requirements are its virtual functions. Implementations
/// are shared by pointer and never copied.
class ServiceProtocol {
  public:
    ServiceProtocol() = default;
    ServiceProtocol(const ServiceProtocol&) = delete;
    ServiceProtocol& operator=(const ServiceProtocol&) = delete;
    virtual ~ServiceProtocol() = default;
};

/// Names a service of a Runtime by its protocol. A host declares one for each protocol of its own:
///
///     inline constexpr ServiceKey<PrintService> printing;
///
/// Those of the library are in a namespace of their own, `services`: their names are short, and would be in the way of
/// variables.
template <class Protocol>
struct ServiceKey {};

/// An implementation of a protocol that hands every requirement on to `target()`. Specialised beside each protocol of
/// the library. A host derives from it to change one requirement of a service and keep the others:
///
///     class CountedContacts final : public Forwarding<ContactsService> {
///       public:
///         std::shared_ptr<ContactsService> target() const override { return contacts_; }
///         AnyPublisher<Contact, ReadError> fetchContact(const ObjectID<Contact>& id) override { … }
///     };
template <class Protocol>
class Forwarding;

/// A protocol that has one.
template <class Protocol>
concept Forwardable = requires { sizeof(Forwarding<Protocol>); };

}  // namespace kestrel
