#pragma once

#include <kestrel/coding/coding_access.h>
#include <kestrel/records/contact.h>

/// The members of a Contact that are texts, numbers, dates and the like, for codecs written by hand against other
/// libraries: X(member) once each. The identifier, the lists, the permissions and the category are objects and handled
/// apart; of pictures the samples have none.
// clang-format off
#define CONTACT_PLAIN_FIELDS(X)                                                                                        \
    X(alias)                                                                                                           \
    X(anniversaryDay)                                                                                                  \
    X(anniversaryMonth) X(anniversaryYear) X(birthDay) X(birthMonth) X(birthYear) X(createDate) X(creditation)         \
        X(deletionDate) X(deletionIdentifier) X(deletionUserID) X(details) X(extra1) X(extra10) X(extra11) X(extra12)  \
            X(extra2) X(extra3) X(extra4) X(extra5) X(extra6) X(extra7) X(extra8) X(extra9) X(extraDate1)              \
                X(extraDate2) X(extraDate3) X(extraDate4) X(firstName) X(hobbies) X(individualSalutation) X(isFlagged) \
                    X(lastName) X(middleName) X(modifyDate) X(nickname) X(prefix) X(priority) X(relationshipToMe)      \
                        X(suffix) X(tagline)

namespace peers {

/// A member to be written, the read-only ones too, as any codec has to.
template <class M>
auto& writable(M& member) {
    return kestrel::CodingAccess::member(member);
}

/// The objects of a contact, behind the plain members.
#define CONTACT_OBJECT_FIELDS(X) \
    X(contactID) X(permissions) X(category) X(electronicAddresses) X(geoAddresses) X(keywords) X(phones)

enum Member : unsigned {
#define LIST(member) member,
    CONTACT_PLAIN_FIELDS(LIST) CONTACT_OBJECT_FIELDS(LIST)
#undef LIST
        memberCount
};

inline constexpr std::string_view memberNames[] = {
#define LIST(member) #member,
    CONTACT_PLAIN_FIELDS(LIST) CONTACT_OBJECT_FIELDS(LIST)
#undef LIST
};

/// The member of a name; `memberCount` when there is none.
unsigned lookUp(std::string_view name);

}  // namespace peers
// clang-format on
