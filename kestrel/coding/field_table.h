#pragma once

#include <kestrel/coding/codec.h>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

/// A type's wire form, described once, in the source file of the type:
///
///     KESTREL_FIELDS(RGBAColor, red, green, blue, alpha)
///
/// Each entry is a member; its key is the member's name, or the first of a pair in parentheses: `(objectID,
/// visibilityPresetID)`. From the list come encoding and decoding, hashing and the debug mirror. The list names all
/// members, each once: a member that is left out or repeated stops the build. It is used inside namespace kestrel, for
/// aggregates of any namespace, in a source file that includes <kestrel/coding/wire_form.h>; the header of the type
/// says `extern template struct Codec<Type>;`.
///
/// A macro, because the language cannot yet walk an aggregate's members and name them: what it expands to is a switch
/// of straight-line statements, which compiles faster than a tuple of member pointers and runs as fast as code by hand.
#define KESTREL_FIELDS(Type, ...)                                                                             \
    template <>                                                                                               \
    struct FieldTable<Type> {                                                                                 \
        static constexpr std::string_view typeName = #Type;                                                   \
        enum class Index : unsigned { KESTREL_FOR_EACH(KESTREL_FIELD_INDEX, Type, __VA_ARGS__) memberCount }; \
        static constexpr std::size_t count = static_cast<std::size_t>(Index::memberCount);                    \
        static constexpr std::array<std::string_view, count> keys{                                            \
            KESTREL_FOR_EACH(KESTREL_FIELD_NAME, Type, __VA_ARGS__)};                                         \
        static constexpr std::array<bool, count> required{                                                    \
            KESTREL_FOR_EACH(KESTREL_FIELD_REQUIRED, Type, __VA_ARGS__)};                                     \
        using First = decltype(Type::KESTREL_FIRST_MEMBER(__VA_ARGS__, ));                                    \
        template <class Value, class Visitor>                                                                 \
        [[gnu::always_inline]] static bool visitFrom(unsigned start, Value& value, Visitor&& visit) {         \
            switch (start) {                                                                                  \
                KESTREL_FOR_EACH(KESTREL_FIELD_VISIT, Type, __VA_ARGS__)                                      \
                default: return false;                                                                        \
            }                                                                                                 \
        }                                                                                                     \
        template <class Visitor>                                                                              \
        static void visitBoth(const Type& a, const Type& b, Visitor&& visit) {                                \
            KESTREL_FOR_EACH(KESTREL_FIELD_VISIT_BOTH, Type, __VA_ARGS__)                                     \
        }                                                                                                     \
        template <class Value, class FirstMember>                                                          \
        static constexpr bool listsEveryMember = !std::is_aggregate_v<Value> || (requires(FirstMember first) { \
            Value{std::move(first) KESTREL_FOR_REST(KESTREL_FIELD_BRACES, Type, __VA_ARGS__)};             \
        } && !requires(FirstMember first) {                                                                \
            Value{std::move(first) KESTREL_FOR_EACH(KESTREL_FIELD_BRACES, Type, __VA_ARGS__)};             \
        });  \
    };                                                                                                        \
    static_assert(::kestrel::FieldTable<Type>::listsEveryMember<Type, ::kestrel::FieldTable<Type>::First>,    \
                  "The field table of " #Type " must list every member, each once.");                         \
    template struct Codec<Type>

/// @cond
// What the macro is made of.
#define KESTREL_FIELD_INDEX(Type, entry) KESTREL_FIELD_MEMBER(entry),
#define KESTREL_FIELD_NAME(Type, entry) KESTREL_FIELD_TEXT(entry),
#define KESTREL_FIELD_BRACES(Type, entry) \
    , {}
#define KESTREL_FIELD_REQUIRED(Type, entry) \
    ::kestrel::coding_detail::isRequired<decltype(Type::KESTREL_FIELD_MEMBER(entry))>,
#define KESTREL_FIELD_VISIT(Type, entry)                                                          \
    case static_cast<unsigned>(Index::KESTREL_FIELD_MEMBER(entry)):                               \
        if (visit.template operator()<static_cast<unsigned>(Index::KESTREL_FIELD_MEMBER(entry))>( \
                ::kestrel::CodingAccess::member(value.KESTREL_FIELD_MEMBER(entry)),               \
                ",\"" KESTREL_FIELD_TEXT(entry) "\":"))                                           \
            return true;                                                                          \
        [[fallthrough]];

#define KESTREL_FIELD_VISIT_BOTH(Type, entry)                             \
    visit(::kestrel::CodingAccess::member(a.KESTREL_FIELD_MEMBER(entry)), \
          ::kestrel::CodingAccess::member(b.KESTREL_FIELD_MEMBER(entry)), \
          std::string_view(KESTREL_FIELD_TEXT(entry)));

// An entry is `member` or `(key, member)`.
#define KESTREL_FIELD_MEMBER(entry) KESTREL_JOIN(KESTREL_MEMBER_, KESTREL_IS_PAIR(entry))(entry)
#define KESTREL_MEMBER_0(entry) entry
#define KESTREL_MEMBER_1(entry) KESTREL_PAIR_SECOND entry
#define KESTREL_FIELD_TEXT(entry) KESTREL_JOIN(KESTREL_TEXT_, KESTREL_IS_PAIR(entry))(entry)
#define KESTREL_TEXT_0(entry) #entry
#define KESTREL_TEXT_1(entry) KESTREL_PAIR_FIRST entry
#define KESTREL_PAIR_FIRST(first, second) #first
#define KESTREL_PAIR_SECOND(first, second) second
#define KESTREL_IS_PAIR(entry) KESTREL_TAKE_SECOND_OF(KESTREL_PAIR_PROBE entry, 0, )
#define KESTREL_TAKE_SECOND_OF(...) KESTREL_TAKE_SECOND(__VA_ARGS__)
#define KESTREL_PAIR_PROBE(first, second) ~, 1
#define KESTREL_TAKE_SECOND(first, second, ...) second
#define KESTREL_JOIN(a, b) KESTREL_JOIN_NOW(a, b)
#define KESTREL_JOIN_NOW(a, b) a##b
#define KESTREL_FIRST_MEMBER(first, ...) KESTREL_FIELD_MEMBER(first)
#define KESTREL_FOR_REST(macro, context, first, ...) KESTREL_FOR_EACH(macro, context, __VA_ARGS__)

// Applies a macro to each argument: up to 256 of them.
#define KESTREL_FOR_EACH(macro, context, ...) \
    __VA_OPT__(KESTREL_EXPAND(KESTREL_FOR_EACH_STEP(macro, context, __VA_ARGS__)))
#define KESTREL_FOR_EACH_STEP(macro, context, first, ...) \
    macro(context, first) __VA_OPT__(KESTREL_FOR_EACH_AGAIN KESTREL_PARENTHESES(macro, context, __VA_ARGS__))
#define KESTREL_FOR_EACH_AGAIN() KESTREL_FOR_EACH_STEP
#define KESTREL_PARENTHESES ()
#define KESTREL_EXPAND(...) KESTREL_EXPAND4(KESTREL_EXPAND4(KESTREL_EXPAND4(KESTREL_EXPAND4(__VA_ARGS__))))
#define KESTREL_EXPAND4(...) KESTREL_EXPAND3(KESTREL_EXPAND3(KESTREL_EXPAND3(KESTREL_EXPAND3(__VA_ARGS__))))
#define KESTREL_EXPAND3(...) KESTREL_EXPAND2(KESTREL_EXPAND2(KESTREL_EXPAND2(KESTREL_EXPAND2(__VA_ARGS__))))
#define KESTREL_EXPAND2(...) KESTREL_EXPAND1(KESTREL_EXPAND1(KESTREL_EXPAND1(KESTREL_EXPAND1(__VA_ARGS__))))
#define KESTREL_EXPAND1(...) __VA_ARGS__
/// @endcond

namespace kestrel {

/// The field table of a type; `KESTREL_FIELDS` makes it.
template <class T>
struct FieldTable;

namespace coding_detail {

template <class M>
inline constexpr bool isRequired = true;
template <class T>
inline constexpr bool isRequired<std::optional<T>> = false;
template <class T, class Owner>
inline constexpr bool isRequired<ReadOnly<T, Owner>> = isRequired<T>;

/// A perfect hash over a type's keys, found when the type is compiled: one multiplication, one look-up and one
/// comparison tell which member a key names.
template <std::size_t Count>
class KeyIndex {
  public:
    static constexpr unsigned notFound = Count;

    consteval explicit KeyIndex(const std::array<std::string_view, Count>& keys) : keys_(keys) {
        factor_ = 0x9e3779b97f4a7c15U;
        for (int attempts = 0;; ++attempts, factor_ = factor_ * 0xd1342543de82ef95U + 1) {
            if (attempts == 2000)
                throw "two keys share their length, their first eight and their last eight characters";
            slots_.fill(static_cast<std::uint8_t>(notFound));
            bool clash = false;
            for (std::size_t i = 0; i < Count && !clash; ++i) {
                auto& slot = slots_[slotOf(keys[i])];
                clash = slot != notFound;
                slot = static_cast<std::uint8_t>(i);
            }
            if (!clash) return;
        }
    }
    [[nodiscard]] constexpr unsigned find(std::string_view key) const noexcept {
        const unsigned found = slots_[slotOf(key)];
        return found != notFound && keys_[found] == key ? found : notFound;
    }

  private:
    static_assert(Count < 256, "A field table has at most 255 members.");
    static constexpr unsigned bits = std::bit_width(Count * 8);

    static constexpr std::uint64_t wordAt(std::string_view key, std::size_t at) noexcept {
        std::uint64_t word = 0;
        if consteval {
            for (std::size_t i = 8; i-- > 0;) {
                word = (word << 8U) | (at + i < key.size() ? static_cast<unsigned char>(key[at + i]) : 0U);
            }
        } else {
            static_assert(std::endian::native == std::endian::little,
                          "Keys are hashed by their bytes as they lie in memory.");
            if (key.size() >= at + 8) {
                std::memcpy(&word, key.data() + at, sizeof word);
            } else {
                for (std::size_t i = key.size(); i-- > at;)
                    word = (word << 8U) | static_cast<unsigned char>(key[i]);
            }
        }
        return word;
    }
    [[nodiscard]] constexpr std::size_t slotOf(std::string_view key) const noexcept {
        const std::uint64_t front = wordAt(key, 0);
        const std::uint64_t back = key.size() > 8 ? wordAt(key, key.size() - 8) : 0;
        const std::uint64_t mixed = (front ^ std::rotl(back, 23) ^ (key.size() << 57U)) * factor_;
        return mixed >> (64U - bits);
    }

    std::array<std::string_view, Count> keys_;
    std::uint64_t factor_ = 0;
    std::array<std::uint8_t, std::size_t{1} << bits> slots_{};
};

template <class T>
inline constexpr KeyIndex<FieldTable<T>::count> keyIndex{FieldTable<T>::keys};

/// Which members of a value have been read.
template <std::size_t Count>
class MemberSet {
  public:
    /// False when the member is there already.
    [[gnu::always_inline]] constexpr bool insert(unsigned member) noexcept {
        std::uint64_t& word = words_[member / 64];
        const std::uint64_t bit = std::uint64_t{1} << (member % 64);
        if ((word & bit) != 0) return false;
        word |= bit;
        return true;
    }
    [[nodiscard]] constexpr bool containsAll(const MemberSet& other) const noexcept {
        for (std::size_t i = 0; i < words; ++i) {
            if ((other.words_[i] & ~words_[i]) != 0) return false;
        }
        return true;
    }

  private:
    static constexpr std::size_t words = (Count + 63) / 64;
    std::uint64_t words_[words] = {};
};

template <class T>
inline constexpr auto requiredMembers = [] {
    MemberSet<FieldTable<T>::count> members;
    for (unsigned i = 0; i < FieldTable<T>::count; ++i) {
        if (FieldTable<T>::required[i]) (void)members.insert(i);
    }
    return members;
}();

template <class M>
inline constexpr bool isOptional = false;
template <class M>
inline constexpr bool isOptional<std::optional<M>> = true;

/// The fast pass over an object: members in the order of the table are matched by their text; any other key is looked
/// up. Gives up on whatever the careful pass has to judge.
template <class T>
bool decodeFields(JSONReader& reader, T& value) {
    using Table = FieldTable<T>;
    if (!reader.beginObject()) return false;
    MemberSet<Table::count> seen;
    if (!reader.endIfEmpty('}')) {
        // How many members in a row may be absent before looking a key up is cheaper than trying the next ones.
        constexpr unsigned patience = 6;
        unsigned start = 0;
        bool keyWasRead = false;
        for (;;) {
            unsigned misses = 0;
            enum class Outcome { undecided, failed, atEnd } outcome = Outcome::undecided;
            unsigned resume = start;
            const auto step = [&]<unsigned I, class M, std::size_t N>(M& member, const char(&commaKey)[N])
                                  __attribute__((always_inline)) {
                                      if (!keyWasRead && !reader.matchKey<N - 2>(commaKey + 1))
                                          return ++misses > patience;
                                      keyWasRead = false;
                                      misses = 0;
                                      resume = I + 1;
                                      if (!seen.insert(I) || !decodeValue(reader, member)) {
                                          outcome = Outcome::failed;
                                          return true;
                                      }
                                      switch (reader.nextMember()) {
                                          case JSONReader::Next::another: return false;
                                          case JSONReader::Next::end: outcome = Outcome::atEnd; return true;
                                          case JSONReader::Next::broken: outcome = Outcome::failed; return true;
                                      }
                                      return true;
                                  };
            (void)Table::visitFrom(start, value, step);
            if (outcome == Outcome::atEnd) break;
            if (outcome == Outcome::failed) return false;
            std::string_view key;
            if (!reader.readKey(key)) return false;
            const unsigned found = keyIndex<T>.find(key);
            if (found != Table::count) {
                start = found;
                keyWasRead = true;
                continue;
            }
            start = resume;
            if (!reader.skipValue()) return false;
            const auto next = reader.nextMember();
            if (next == JSONReader::Next::end) break;
            if (next == JSONReader::Next::broken) return false;
        }
    }
    return seen.containsAll(requiredMembers<T>);
}

/// The careful pass over an object: the members in the order of the table, with the first error.
template <class T>
bool decodeFieldsCarefully(JSONReader& reader, T& value) {
    using Table = FieldTable<T>;
    const auto start = reader.place();
    std::array<JSONReader::Place, Table::count> places{};
    if (!findMembers(reader, Table::keys.data(), Table::count, places.data())) return false;
    const auto behind = reader.place();
    const auto step = [&]<unsigned I>(auto& member, const auto&) {
        if (places[I].cursor == nullptr) {
            if (!Table::required[I]) return false;
            reader.goTo(start);
            reader.failMissingKey(Table::keys[I]);
            return true;
        }
        reader.goTo(places[I]);
        if (decodeValue(reader, member)) return false;
        reader.prependKey(Table::keys[I]);
        return true;
    };
    if (Table::visitFrom(0, value, step)) return false;
    reader.goTo(behind);
    return true;
}

template <class T>
bool encodeFields(JSONWriter& writer, const T& value) {
    using Table = FieldTable<T>;
    const std::size_t opened = writer.open();
    const auto step = [&]<unsigned I, class M, std::size_t N>(const M& member, const char(&commaKey)[N])
                          __attribute__((always_inline)) {
                              if constexpr (isOptional<M>) {
                                  if (!member) return false;
                                  writer.readyKey(commaKey);
                                  if (encodeValue(writer, *member)) return false;
                              } else {
                                  writer.readyKey(commaKey);
                                  if (encodeValue(writer, member)) return false;
                              }
                              writer.prependKey(Table::keys[I]);
                              return true;
                          };
    if (Table::visitFrom(0, value, step)) return false;
    writer.closeObject(opened);
    return true;
}

template <class T>
T blankFields() {
    return T{blankValue<MemberValueOf<typename FieldTable<T>::First>>()};
}

template <class T>
void hashFields(Hasher& hasher, const T& value) {
    const auto step = [&]<unsigned I>(const auto& member, const auto&) {
        hashValue(hasher, member);
        return false;
    };
    (void)FieldTable<T>::visitFrom(0, value, step);
}

template <class T>
void mirrorFields(DebugMirror& mirror, const T& value) {
    using Table = FieldTable<T>;
    mirror.word(Table::typeName);
    mirror.open();
    const auto step = [&]<unsigned I, class M>(const M& member, const auto&) {
        if constexpr (isOptional<M>) {
            if (!member) {
                mirror.absent(Table::keys[I]);
                return false;
            }
            mirror.member(Table::keys[I]);
            mirrorValue(mirror, *member);
        } else {
            mirror.member(Table::keys[I]);
            mirrorValue(mirror, member);
        }
        return false;
    };
    (void)Table::visitFrom(0, value, step);
    mirror.close();
}

template <class T>
std::vector<std::string_view> differentFields(const T& a, const T& b) {
    std::vector<std::string_view> keys;
    FieldTable<T>::visitBoth(a, b, [&](const auto& one, const auto& other, std::string_view key) {
        if (!(one == other)) keys.push_back(key);
    });
    return keys;
}

}  // namespace coding_detail
}  // namespace kestrel
