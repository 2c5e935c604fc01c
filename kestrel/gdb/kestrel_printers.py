"""Shows the values of KestrelService in gdb as people read them.

    (gdb) print contact
    $1 = Contact/12 = {createDate = 2024-03-01T09:30:00Z, firstName = "Ada", isFlagged = false, ...}

A record is its identifier, with the members that say something: absent ones, empty containers and numbers that are 0 are
left out, what is present is shown as its plain value. `print/r` shows a value as it lies in memory, and so is one shown
that makes no sense.

gdb finds these printers by itself through the script beside the shared library, once it is allowed to:

    add-auto-load-safe-path /opt/kestrel

in ~/.config/gdb/gdbinit. For a program that is linked statically: `source` with the path of this file.

Nothing here calls into the program, so that core files are read as well.
"""

import datetime
import math
import re

import gdb
import gdb.printing

PRINTER_NAME = "KestrelService"
LONGEST_NAME = 80
CONTAINERS = re.compile(r"std::(__\w+::)?(vector|list|deque|forward_list|(unordered_)?(multi)?(set|map))")


class Shown:
    """A value that is one text: a string, or another value that stands for it."""

    def __init__(self, text):
        self.text = text

    def to_string(self):
        return self.text


class ShownWithChildren(Shown):
    """Pairs of names and values, behind a text where there is one."""

    def __init__(self, text, children, hint=None):
        super().__init__(text)
        self.pairs = children
        self.hint = hint

    def children(self):
        return iter(self.pairs)

    def display_hint(self):
        return self.hint


# ---- types


def basic(gdb_type):
    """The type without names for it, const and references."""
    gdb_type = gdb_type.strip_typedefs()
    if gdb_type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
        gdb_type = gdb_type.target()
    return gdb_type.unqualified().strip_typedefs()


def name_of(gdb_type):
    return basic(gdb_type).name or ""


def template_of(gdb_type):
    """`kestrel::ReadOnly` of `kestrel::ReadOnly<T, Owner>`."""
    return name_of(gdb_type).split("<", 1)[0]


def members(gdb_type):
    return [field for field in gdb_type.fields() if hasattr(field, "bitpos") and not field.is_base_class]


def bases(gdb_type):
    return [field.type for field in gdb_type.fields() if field.is_base_class]


def is_choice(gdb_type):
    return template_of(gdb_type) == "kestrel::Choice" or any(is_choice(base) for base in bases(basic(gdb_type)))


def is_record(gdb_type):
    """Whether it begins with its own identifier, read-only. Compilers do not tell debuggers of `recordName`."""
    first = next(iter(members(gdb_type)), None)
    if first is None or template_of(first.type) != "kestrel::ReadOnly":
        return False
    identifier = basic(first.type).template_argument(0)
    return (
        template_of(identifier) == "kestrel::ObjectID"
        and name_of(identifier.strip_typedefs().template_argument(0)) == name_of(gdb_type)
        and name_of(basic(first.type).template_argument(1)) == name_of(gdb_type)
    )


def is_aggregate(gdb_type):
    """Whether it is a structure of the library that hides nothing: private members end in an underscore."""
    if gdb_type.code != gdb.TYPE_CODE_STRUCT or not name_of(gdb_type).startswith("kestrel::") or bases(gdb_type):
        return False
    names = [field.name for field in members(gdb_type)]
    return bool(names) and not any(name is None or name.endswith("_") or name.startswith("_vptr") for name in names)


def in_cplusplus(command):
    """What a command says that names something of C++, whatever language the selected frame is in."""
    return gdb.execute(f"with language c++ -- {command}", to_string=True)


def remembered(gdb_type, key, find):
    """What `find` gives, which is found once for as long as the program's symbols are loaded."""
    known = gdb_type.objfile.__dict__.setdefault("kestrel", {}) if gdb_type.objfile is not None else {}
    if key not in known:
        known[key] = find()
    return known[key]


# ---- values


def contained(optional):
    """The value of a std::optional; None where it is absent."""
    payload = optional["_M_payload"]
    return payload["_M_payload"]["_M_value"] if payload["_M_engaged"] else None


def plain(value):
    """The value within what only wraps it; None where there is none."""
    while value is not None:
        if value.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            value = value.referenced_value()
        template = template_of(value.type)
        if template == "kestrel::ReadOnly":
            value = value["value_"]
        elif template == "std::optional":
            value = contained(value)
        elif template == "kestrel::Shared":
            value = pointed_to(value["value_"])
        elif template == "kestrel::AnyError":
            held = pointed_to(value["error_"])
            value = held.cast(held.dynamic_type)["error"] if held is not None else None
        else:
            break
    return value


def pointed_to(shared_pointer):
    pointer = shared_pointer["_M_ptr"]
    return pointer.dereference() if pointer else None


def is_silent(value):
    """Whether a member says nothing: absent, an empty container, or a structure of such members. An optional container
    that is there says something even where it is empty."""
    is_optional = template_of(value.type) == "std::optional" or "::ReadOnly<std::optional<" in name_of(value.type)
    value = plain(value)
    if value is not None and is_optional:
        return False
    if value is None:
        return True
    gdb_type = basic(value.type)
    template = template_of(gdb_type)
    if template in ("std::basic_string", "std::__cxx11::basic_string"):
        return value["_M_string_length"] == 0
    if CONTAINERS.fullmatch(template):
        printer = gdb.default_visualizer(value)
        return hasattr(printer, "children") and next(iter(printer.children()), None) is None
    if template == "boost::container::flat_set":
        return sequence_of_flat_set(value)["m_size"] == 0
    if is_aggregate(gdb_type) and not is_record(gdb_type):
        return all(is_silent(value[field]) for field in members(gdb_type))
    return False


def is_zero(value):
    return value.type.strip_typedefs().code in (gdb.TYPE_CODE_INT, gdb.TYPE_CODE_FLT) and value == 0


def speaking(value, fields):
    """The members that say something, by their names, as plain values."""
    pairs = []
    for field in fields:
        member = value[field]
        try:
            if not is_silent(member):
                pairs.append((field.name.rstrip("_"), plain(member)))
        except (gdb.error, RuntimeError, TypeError, ValueError):
            pairs.append((field.name.rstrip("_"), member))
    return pairs


# ---- identifiers


def short_name(gdb_type):
    return re.sub(r"<.*", "", name_of(gdb_type)).rsplit("::", 1)[-1]


def entity_name(record):
    """`Organization` of a Company. The library keeps the names as texts; where those cannot be read, the type's own."""

    def find():
        symbol = in_cplusplus(f"output/x (unsigned long)&'kestrel::entityNameOf<{name_of(record)}>'")
        length, start = (int(in_cplusplus(f"output/x ((unsigned long*){symbol})[{i}]"), 16) for i in range(2))
        if not 0 < length <= LONGEST_NAME:
            raise ValueError(length)
        return gdb.selected_inferior().read_memory(start, length).tobytes().decode("ascii")

    try:
        return remembered(record, ("entity", name_of(record)), find)
    except (gdb.error, AttributeError, ValueError):
        return short_name(record)


def uuid_text(high, low):
    digits = f"{int(high):016X}{int(low):016X}"
    return "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]))


def identity_text(word):
    return f"ObjectIdentifier(0x{int(word):016x})"


def storage_parts(storage):
    """The case of an identifier, and its key, UUID or identity as a text."""
    case = int(storage["case_"])
    names = {field.enumval: field.name.rsplit("::", 1)[-1] for field in storage["case_"].type.strip_typedefs().fields()}
    first = int(storage["first_"])
    if names[case] == "persistent":
        return "persistent", str(first - (1 << 64) if first >= 1 << 63 else first)
    if names[case] == "new_":
        return "new", uuid_text(first, storage["second_"])
    return "temp", identity_text(first)


def identifier_text(entity, storage):
    """As `stringValue()`, closing parentheses included."""
    case, text = storage_parts(storage)
    return f"{entity}/{text}" if case == "persistent" else f"{entity}/{case}/{text})"


def show_object_id(value):
    record = basic(value.type).template_argument(0)
    return Shown(identifier_text(entity_name(record), value["storage_"]))


def show_any_object_id(value):
    name = value["entity_"]["name"]
    entity = name["_M_str"].string(length=min(int(name["_M_len"]), LONGEST_NAME))
    return Shown(identifier_text(entity, value["storage_"]))


def show_object_id_storage(value):
    case, text = storage_parts(value)
    return Shown(f"#{text}" if case == "persistent" else text)


# ---- small values


def show_date(value):
    seconds = float(value["seconds_"])
    try:
        whole = math.floor(seconds)
        microseconds = math.floor((seconds - whole) * 1e6 + 0.5)
        moment = datetime.datetime(2001, 1, 1) + datetime.timedelta(seconds=whole, microseconds=microseconds)
    except (OverflowError, ValueError):
        return Shown(f"{seconds:.17g} s since 2001-01-01T00:00:00Z")
    text = moment.replace(microsecond=0).isoformat()
    if moment.microsecond:
        text += f".{moment.microsecond:06}".rstrip("0")
    return Shown(text + "Z")


def show_partial_date(value):
    day, month, year = int(value["day"]), int(value["month"]), contained(value["year"])
    # Leap years are not looked at: whether the day exists is what its reader wants to know.
    if not (1 <= month <= 12 and 1 <= day <= 31 and (year is None or 0 <= int(year) <= 9999)):
        return None
    return Shown(f"--{month:02}-{day:02}" if year is None else f"{int(year):04}-{month:02}-{day:02}")


def show_data(value):
    vector = value["bytes"]["_M_impl"]
    start, end = int(vector["_M_start"]), int(vector["_M_finish"])
    count = end - start
    if not 0 <= count <= int(vector["_M_end_of_storage"]) - start:
        return None
    text = "1 byte" if count == 1 else f"{count} bytes"
    if count == 0:
        return Shown(text)
    first = gdb.selected_inferior().read_memory(start, min(count, 32)).tobytes()
    content = f'"{first.decode("ascii")}"' if re.fullmatch(rb"[ !#-\[\]-~]+", first) else first.hex(" ")
    return Shown(f"{text}: {content}{'...' if count > len(first) else ''}")


def show_color(value):
    *shades, alpha = (float(value[name]) for name in ("red", "green", "blue", "alpha"))
    numbers = shades if alpha == 1 else [*shades, alpha]
    return Shown(f"{'rgb' if alpha == 1 else 'rgba'}({', '.join(f'{number:.6g}' for number in numbers)})")


def sequence_of_flat_set(value):
    return value["m_data"]["m_seq"]["m_holder"]


def show_flat_set(value):
    sequence = sequence_of_flat_set(value)
    count = int(sequence["m_size"])
    if not count <= int(sequence["m_capacity"]) < 1 << 32:
        return None
    start = sequence["m_start"]
    return ShownWithChildren(None, ((f"[{i}]", start[i]) for i in range(count)), "array")


# ---- choices


def case_names(gdb_type, count):
    """The names of a choice's cases. Static functions make them, and stand in the order of the cases."""

    def makers(of):
        names = [name for base in bases(of) for name in makers(base)]
        if template_of(of) in ("kestrel::Choice", "kestrel::NamedChoice"):
            return names
        for line in in_cplusplus(f"ptype/Mr {name_of(of)}").splitlines():
            maker = re.match(r"\s+static (\S.*) (\w+)\(.*\);$", line)
            if maker and maker.group(1) == name_of(gdb_type):
                names.append(maker.group(2).rstrip("_"))
        return names

    names = list(dict.fromkeys(makers(gdb_type)))
    if len(names) < count:
        raise ValueError(f"{name_of(gdb_type)} has {count} cases and {len(names)} functions that make them")
    return names[:count]


def show_choice(value):
    gdb_type = basic(value.type)
    variant = value["value_"]
    payloads = []
    try:
        while True:
            payloads.append(basic(variant.type).template_argument(len(payloads)))
    except (gdb.error, RuntimeError):
        pass
    index = int(variant["_M_index"])
    if index >= len(payloads):
        return None
    names = remembered(gdb_type, ("cases", name_of(gdb_type)), lambda: case_names(gdb_type, len(payloads)))
    name = names[index]

    union = variant["_M_u"]
    for _ in range(index):
        union = union["_M_rest"]
    payload = union["_M_first"]["_M_storage"]
    if name_of(payload.type) != name_of(payloads[index]):
        payload = payload.address.cast(payloads[index].pointer()).dereference()
    if template_of(payload.type) == "kestrel::NoPayload":
        return Shown(name)
    payload = plain(payload)
    if payload is None:
        return Shown(f"{name}()")
    printer = gdb.default_visualizer(payload)
    if hasattr(printer, "children"):
        text = printer.to_string() if hasattr(printer, "to_string") else None
        hint = printer.display_hint() if hasattr(printer, "display_hint") else None
        return ShownWithChildren(name if text is None else f"{name}({text})", printer.children(), hint)
    return Shown(f"{name}({payload.format_string()})")


# ---- records, and what they are made of


def show_attributed_string(value):
    return ShownWithChildren(None, speaking(value, [f for f in members(basic(value.type)) if f.name != "length_"]))


def show_structure(value):
    gdb_type = basic(value.type)
    first, *others = members(gdb_type)
    if not is_record(gdb_type):
        return ShownWithChildren(None, speaking(value, (first, *others)))
    identifier = show_object_id(value[first]["value_"]).text
    # In records 0 is what a number is that was not set.
    return ShownWithChildren(identifier, [pair for pair in speaking(value, others) if not is_zero(value[pair[0]])])


def show_as(value):
    """As another value is shown, which stands for the whole."""
    return gdb.default_visualizer(value) or Shown(value)


def show_wrapped(value):
    inner = plain(value)
    if inner is not None:
        return show_as(inner)
    # An absent optional says so itself; of a value that was moved away the raw form tells more.
    return show_as(value["value_"]) if template_of(value.type) == "kestrel::ReadOnly" else None


SHOWING = {
    "kestrel::AnyError": show_wrapped,
    "kestrel::AnyObjectID": show_any_object_id,
    "kestrel::AttributedString": show_attributed_string,
    "kestrel::Data": show_data,
    "kestrel::Date": show_date,
    "kestrel::ObjectID": show_object_id,
    "kestrel::ObjectIDStorage": show_object_id_storage,
    "kestrel::ObjectIdentifier": lambda value: Shown(identity_text(value["word_"])),
    "kestrel::PartialDate": show_partial_date,
    "kestrel::RGBAColor": show_color,
    "kestrel::ReadOnly": show_wrapped,
    "kestrel::Shared": show_wrapped,
    "kestrel::URL": lambda value: show_as(value["text_"]),
    "kestrel::UUID": lambda value: Shown(uuid_text(value["high_"], value["low_"])),
}


def show(value):
    """How gdb shows a value; None for what is not the library's, and for what cannot be what it says it is."""
    gdb_type = basic(value.type)
    if gdb_type.code != gdb.TYPE_CODE_STRUCT or not gdb_type.name:
        return None
    if value.type.strip_typedefs().code != gdb.TYPE_CODE_STRUCT:
        value = value.referenced_value()
    showing = SHOWING.get(template_of(gdb_type))
    if showing is None:
        if name_of(gdb_type).startswith("boost::container::flat_set<kestrel::"):
            showing = show_flat_set
        elif name_of(gdb_type).startswith("std::"):
            return None
        elif is_record(gdb_type) or is_aggregate(gdb_type):
            showing = show_structure
        elif name_of(gdb_type).startswith("kestrel::") and is_choice(gdb_type):
            showing = show_choice
        else:
            return None
    return showing(value)


class KestrelPrinter(gdb.printing.PrettyPrinter):
    def __call__(self, value):
        try:
            return show(value)
        except Exception:  # pylint: disable=broad-except
            # A value that was never made or is long gone may be anything: gdb then shows it as it lies in memory.
            return None


def register(objfile=None):
    """Makes gdb use the printers, as long as that file of symbols is loaded; without one always."""
    gdb.printing.register_pretty_printer(objfile, KestrelPrinter(PRINTER_NAME), replace=True)


if __name__ == "__main__":
    register(gdb.current_objfile())
