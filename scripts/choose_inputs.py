"""Chooses the inputs of a fuzz target that are kept, for scripts/fuzz.

    choose_inputs.py CONTROL FOLDER

CONTROL is the control file of a merge by libFuzzer, which says what each input reaches. The folder gets those that reach
most of it between them, one after the other, until nothing new is reached or there are enough.
"""

import hashlib
import heapq
import pathlib
import sys

enough = 450
# In bytes: larger ones reach much, and nobody can read them.
longest = 4096


def reached_by(control):
    """What each file reaches, as a set of numbers."""
    lines = control.read_text().split("\n")
    count = int(lines[0])
    files = [pathlib.Path(name) for name in lines[2 : 2 + count]]
    reached = {}
    for line in lines[2 + count :]:
        if line.startswith("FT "):
            _, index, *features = line.split()
            reached.setdefault(files[int(index)], set()).update(map(int, features))
    return reached


def chosen_of(reached):
    """The best file for what is left, each time; of two that reach as much the smaller one."""
    candidates = [(-len(features), file.stat().st_size, str(file), file) for file, features in reached.items()]
    candidates = [each for each in candidates if each[1] <= longest]
    heapq.heapify(candidates)
    done = set()
    chosen = []
    while candidates and len(chosen) < enough:
        _, size, name, file = heapq.heappop(candidates)
        gain = len(reached[file] - done)
        if gain == 0:
            continue
        if candidates and gain < -candidates[0][0]:
            heapq.heappush(candidates, (-gain, size, name, file))
            continue
        done |= reached[file]
        chosen.append(file)
    return chosen, done


def main():
    control, folder = map(pathlib.Path, sys.argv[1:])
    reached = reached_by(control)
    chosen, done = chosen_of(reached)
    contents = [file.read_bytes() for file in chosen]
    for old in folder.iterdir():
        old.unlink()
    for content in contents:
        (folder / hashlib.sha1(content).hexdigest()).write_bytes(content)
    whole = set().union(*reached.values())
    print(f"{len(chosen)} inputs in {folder}, which reach {len(done)} of {len(whole)}")


main()
