#include <kestrel/foundation/object_identifier.h>

namespace kestrel {

std::string ObjectIdentifier::description() const {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text = "ObjectIdentifier(0x";
    for (int shift = 60; shift >= 0; shift -= 4)
        text += digits[(word_ >> static_cast<unsigned>(shift)) & 0xfU];
    text += ')';
    return text;
}

}  // namespace kestrel
