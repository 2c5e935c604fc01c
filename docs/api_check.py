"""Lists the public names that the API reference leaves without a comment, the cases of enumerations and the members of
groups included, which doxygen itself does not ask for. Takes the folder of the reference's XML."""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def is_documented(element):
    return any("".join(element.find(part).itertext()).strip() for part in ("briefdescription", "detaileddescription"))


def main(folder):
    names = {}

    def look_at(element, name):
        names[element.get("id")] = None if is_documented(element) else name

    for path in pathlib.Path(folder).glob("*.xml"):
        for compound in ElementTree.parse(path).getroot().findall("compounddef"):
            members = list(compound.iter("memberdef"))
            # A namespace of which there is only a declaration of something foreign has no members.
            if compound.get("kind") in ("file", "dir", "page") or compound.get("prot") == "private" or (
                    compound.get("kind") == "namespace" and not members and not compound.findall("innerclass")):
                continue
            scope = compound.findtext("compoundname")
            look_at(compound, scope)
            for member in members:
                arguments = member.findtext("argsstring") or ""
                if member.get("prot") == "private" or arguments.endswith("=delete"):
                    continue
                name = f"{scope}::{member.findtext('name')}{arguments}"
                look_at(member, name)
                for case in member.findall("enumvalue"):
                    look_at(case, f"{name}::{case.findtext('name')}")

    missing = sorted(filter(None, names.values()))
    if len(names) < 1000:
        sys.exit(f"Only {len(names)} names were found: the check does not see the library.")
    if missing:
        sys.exit("These public names have no comment:\n" + "\n".join(missing))
    print(f"All of {len(names)} public names have a comment.")


main(sys.argv[1])
