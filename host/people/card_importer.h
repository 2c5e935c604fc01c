#pragma once

#include <host/people/contact_card.h>
#include <host/people/import_store.h>
#include <vector>

namespace kestrel::host {

/// Brings the database up to date with cards, in the caller's transaction.
///
/// - A person becomes a contact, found again by the card's identifier; a card without one by its name and its first
///   e-mail address or phone number.
/// - What the card says is written over what there was; what it does not say stays. Of phones, addresses, profiles and
///   keywords those of the card come first, in its order, and the others stay behind them.
/// - A company of that name, or a new one, is where the person has a role; the first role of a contact without any is
///   its default one. A title without a company becomes the tagline.
/// - An organisation becomes a company, of which the card gives only the name: the rest is left out with a warning.
/// - A group becomes a keyword of its members, as far as they are known.
/// - Somebody else becomes the other end of a relationship when exactly one contact has that identifier or name, and
///   otherwise a line of the details.
void importCards(const std::vector<ContactCard>& cards, ImportStore& store);

}  // namespace kestrel::host
