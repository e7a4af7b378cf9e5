"""Draws changes in an order that the seed decides."""

import random
from collections import namedtuple

import places

# `text` is the whole file after the change; `source` the line before it.
Change = namedtuple("Change", "path line mutator old new source text")


def changes(sources, seed):
    """Every place of the files, {path: text}, with one change each."""
    chance = random.Random(seed)
    all_ = [p for path in sorted(sources) for p in places.places(path, sources[path])]
    chance.shuffle(all_)
    for place in all_:
        yield _change(place, sources[place.path], chance.choice(place.replacements))


def all_changes(sources):
    for path in sorted(sources):
        for place in places.places(path, sources[path]):
            for replacement in place.replacements:
                yield _change(place, sources[path], replacement)


def _change(place, source, replacement):
    line = places.line_of(place, source)
    return Change(place.path, line, place.mutator,
                  _short(source[place.begin:place.end]), _short(replacement),
                  source.split("\n")[line - 1].strip(),
                  places.changed(source, place, replacement))


def _short(text):
    return " ".join(text.split())
