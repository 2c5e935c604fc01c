"""Writes the C++ table of person name patterns to standard output; scripts/update-person-names calls it.

    person_name_patterns.py <folder of cldr-person-names-full> <folder of cldr-core>

What many locales share stands in the table once: the texts of patterns, the layouts (which pattern serves which order,
length, usage and formality), and the rows of locales that agree in everything. A locale that has nothing of its own is left
out: its parent serves it.
"""

import json
import pathlib
import re
import sys

ORDERS = ("givenFirst", "surnameFirst", "sorting")
LENGTHS = ("long", "medium", "short")
USAGES = ("referring", "addressing", "monogram")
FORMALITIES = ("formal", "informal")

FIELDS = {"title", "given", "given2", "surname", "surname2", "generation", "credentials"}
MODIFIERS = {
    "informal", "allCaps", "initialCap", "initial", "monogram", "prefix", "core", "retain", "vocative", "genitive"}


def slots():
    """The places of a layout, in the order in which the formatter counts them."""
    for order in ORDERS:
        for length in LENGTHS:
            for usage in USAGES if order != "sorting" else USAGES[:1]:
                for formality in FORMALITIES:
                    yield order, length, usage, formality


def check(pattern, locale):
    """Refuses what the formatter does not know or hold, and the character that separates alternatives."""
    if "|" in pattern:
        sys.exit(f"{locale}: a vertical bar in the pattern {pattern}")
    if not re.fullmatch(r"[^{}]*(\{[^{}]+\}[^{}]*)+", pattern):
        sys.exit(f"{locale}: the pattern {pattern} is malformed")
    fields = re.findall(r"\{([^}]*)\}", pattern)
    if len(fields) > 9:
        sys.exit(f"{locale}: the pattern {pattern} has more fields than the formatter holds")
    for field in fields:
        name, *modifiers = field.split("-")
        if name not in FIELDS or not set(modifiers) <= MODIFIERS:
            sys.exit(f"{locale}: the pattern {pattern} has an unknown field")


def alternatives(names, locale, order, length, usage, formality):
    choices = names["personName"][order][length][usage]
    texts = [choices[formality]]
    texts += [choices[key] for key in sorted(choices) if key.startswith(formality + "-alt-")]
    for text in texts:
        check(text, locale)
    return "|".join(dict.fromkeys(texts))


def once(texts, text):
    """The index of the text in the list, at whose end it is put if it is new."""
    if text not in texts:
        texts.append(text)
    return texts.index(text)


def literal(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def wrapped(items, indent="    ", width=120):
    lines, line = [], indent
    for item in items:
        if len(line) + len(item) + 1 > width and line.strip():
            lines.append(line.rstrip())
            line = indent
        line += item + " "
    return lines + [line.rstrip()]


def copyright_line(folder):
    licence = (pathlib.Path(folder) / "LICENSE").read_text(encoding="utf-8")
    return re.search(r"Copyright © .*", licence)[0].strip()


def main(names_folder, core_folder):
    names_folder, core_folder = pathlib.Path(names_folder), pathlib.Path(core_folder)
    package = json.loads((names_folder / "package.json").read_text("utf-8"))

    def supplemental(name):
        return json.loads((core_folder / "supplemental" / f"{name}.json").read_text("utf-8"))["supplemental"]

    parents = supplemental("parentLocales")["parentLocales"]["parentLocale"]
    likely = supplemental("likelySubtags")["likelySubtags"]
    aliases = supplemental("aliases")["metadata"]["alias"]["languageAlias"]

    data = {}
    for folder in sorted((names_folder / "main").iterdir()):
        document = json.loads((folder / "personNames.json").read_text("utf-8"))
        data[folder.name] = document["main"][folder.name]["personNames"]
        data[folder.name].pop("sampleName", None)

    def parent(locale):
        if locale in parents:
            return parents[locale]
        return locale.rpartition("-")[0] or ("und" if locale != "und" else "")

    def nearest(locale, among):
        while locale and locale not in among:
            locale = parent(locale)
        return locale

    own = {locale for locale in data
           if locale == "und" or data[locale] != data[nearest(parent(locale), data)]} - {"und"}
    # Locales whose parent is not what is left when the last subtag goes.
    led = {locale: nearest(locale, own | {"und"}) for locale in parents if locale not in own}
    led = {locale: target for locale, target in led.items()
           if target != "und" and target != nearest(locale.rpartition("-")[0], own)}

    patterns, layouts, rows, keys = [], [], [], []
    for locale in sorted(own):
        names = data[locale]
        # The formatter joins initials by what stands between the two.
        if not re.fullmatch(r"\{0\}[^{}]*\{1\}", names["initialSequence"]) or names["initial"].count("{0}") != 1:
            sys.exit(f"{locale}: initials of an unknown form")
        layout = tuple(once(patterns, alternatives(names, locale, *slot)) for slot in slots())
        row = (" ".join(names["givenFirst"]).replace("_", "-"), " ".join(names["surnameFirst"]).replace("_", "-"),
               names["initial"], names["initialSequence"], names["nativeSpaceReplacement"],
               names["foreignSpaceReplacement"], names["length"], names["formality"], once(layouts, layout))
        keys.append((locale, once(rows, row)))
    row_of = dict(keys)
    keys += [(locale, row_of[target]) for locale, target in led.items()]

    languages = {key.split("-")[0] for key, _ in keys}
    scripts = {}
    for tag, full in likely.items():
        subtags = tag.split("-")
        script = full.split("-")[1]
        if subtags[0] in languages and (len(subtags) == 1 or len(subtags) == 2 and len(subtags[1]) != 4):
            scripts[tag] = script
    scripts = {tag: script for tag, script in scripts.items()
               if "-" not in tag or script != scripts[tag.split("-")[0]]}
    of_script = {tag[4:]: full.split("-") for tag, full in likely.items() if re.fullmatch("und-[A-Z][a-z]{3}", tag)}
    # Where nothing is known at all, a script is likely too: that one has no entry of its own.
    anything = likely["und"].split("-")
    of_script.setdefault(anything[1], anything)
    of_script = {script: (full[0], full[2]) for script, full in of_script.items() if full[0] in languages}
    old = {tag: entry["_replacement"] for tag, entry in aliases.items()
           if re.fullmatch("[a-z]{2,3}", tag) and entry["_replacement"].split("-")[0] in languages and tag not in languages
           and (len(tag) == 2 or entry["_reason"] != "overlong")}

    out = []
    out += ["// " + copyright_line(names_folder),
            "// SPDX-License-Identifier: Unicode-3.0",
            "//",
            f"// Written by scripts/update-person-names from {package['name']} {package['version']} and cldr-core of the same release. The",
            "// licence stands in data/unicode/LICENSE.",
            "// clang-format off", "",
            "#include <kestrel/localization/person_name_patterns.h>", "",
            "namespace kestrel::localization {", "", "namespace {", "",
            "// Alternatives are separated by a vertical bar.",
            "constexpr std::string_view patterns[] = {"]
    out += [f"    {literal(pattern)}," for pattern in patterns]
    out += ["};", "", "constexpr PersonNameLayout layouts[] = {"]
    for layout in layouts:
        lines = wrapped([f"{index}," for index in layout], "     ")
        lines[0] = "    {" + lines[0][5:]
        lines[-1] = lines[-1][:-1] + "},"
        out += lines
    out += ["};", "",
            "using enum PersonNameLength;",
            "using enum PersonNameFormality;", "",
            "constexpr PersonNameRules rules[] = {"]
    lengths = {"long": "long_", "medium": "medium", "short": "short_"}
    for *texts, length, formality, layout in rows:
        cells = [literal(text) for text in texts] + [lengths[length], formality, f"&layouts[{layout}]"]
        out.append("    {" + ", ".join(cells) + "},")
    out += ["};", "", "constexpr PersonNameRulesKey keys[] = {"]
    out += wrapped(f'{{"{locale}", &rules[{row}]}},' for locale, row in sorted(keys))
    out += ["};", "", "constexpr SubtagPair scripts[] = {"]
    out += wrapped(f'{{"{tag}", "{script}"}},' for tag, script in sorted(scripts.items()))
    out += ["};", "", "constexpr ScriptLocale scriptLocales[] = {"]
    out += wrapped(f'{{"{script}", "{language}", "{region}"}},'
                   for script, (language, region) in sorted(of_script.items()))
    out += ["};", "", "constexpr SubtagPair oldLanguages[] = {"]
    out += wrapped(f'{{"{tag}", "{language}"}},' for tag, language in sorted(old.items()))
    out += ["};", "", "}  // namespace", "",
            "constinit const std::span<const std::string_view> personNamePatterns = patterns;",
            "constinit const std::span<const PersonNameRulesKey> personNameRules = keys;",
            "constinit const std::span<const SubtagPair> likelyScripts = scripts;",
            "constinit const std::span<const ScriptLocale> likelyLocales = scriptLocales;",
            "constinit const std::span<const SubtagPair> replacedLanguages = oldLanguages;", "",
            "}  // namespace kestrel::localization"]
    print("\n".join(out))


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8")
    main(*sys.argv[1:])
