"""Compares instructions and allocations with those that were kept, limits.json."""

import json
import math

import goals
import measure

LIMITS = 'bench/limits.json'
SUBJECTS = ('get,get-8mb,upload-1kb,upload-1mb,upload-file,poll-1,reply-1,poll-100,reply-100,'
            'poll-1000,reply-1000,hardware-read,hardware-write,encode-plain,encode-worst')
PARSES = 'parse-1,parse-100,parse-1000'
BATCHES = 30
# What is by hand is measured in the same run, so that other versions of the libraries below and of
# the compiler make little difference. What is left is where the heap happens to lie, which moves the
# short subjects by up to a hundredth.
MARGIN = 1.02


def over_by_hand(figures, name):
    return {'instructions': round(goals.ratio(figures, name), 4),
            'allocations': round(goals.difference(figures, name), 1)}


def measured(file):
    """The figures of the library, and those of GET for a client that costs a little more."""
    figures = {client: measure.counts('amd64', client, file, BATCHES, subjects)
               for client, subjects in [('library', SUBJECTS), ('bare', SUBJECTS + ',' + PARSES),
                                        ('contract', 'upload-1kb,upload-1mb'), ('canary', 'get')]}
    measure.add_decoding(figures)
    names = sorted(name for name in figures['library'] if not name.startswith(('poll-', 'reply-')))
    worse = over_by_hand({**figures, 'library': figures['canary']}, 'get')
    return {name: over_by_hand(figures, name) for name in names}, {'get': worse}


def excesses(figures, limits):
    """The figures above their limits or goals, as lines to print."""
    lines = []
    for name in figures:
        limit = limits[name]
        most = min(limit['instructions'] * MARGIN, goals.INSTRUCTIONS.get(name, math.inf))
        if figures[name]['instructions'] > most:
            lines.append(f'{name}: {figures[name]["instructions"]:.4f} times the instructions of '
                         f'by hand, at most {most:.4f}')
        most = min(limit['allocations'] + max(1, abs(limit['allocations']) * (MARGIN - 1)),
                   goals.ALLOCATIONS.get(name, math.inf))
        if figures[name]['allocations'] > most:
            lines.append(f'{name}: {figures[name]["allocations"]:.0f} more allocations than by '
                         f'hand, at most {most:.0f}')
    return lines


def keep(figures):
    """Returns whether the figures reach the goals, and only then keeps them."""
    found = excesses(figures, figures)
    if found:
        print('\n'.join(found))
        return False
    with open(LIMITS, 'w', encoding='utf-8') as file:
        json.dump(figures, file, indent=4)
        file.write('\n')
    return True


def check(figures, canary):
    """Returns whether all is within its limits."""
    with open(LIMITS, encoding='utf-8') as file:
        limits = json.load(file)
    if set(limits) != set(figures):
        raise SystemExit(f'bench: {LIMITS} has other subjects; renew it with scripts/bench --keep')
    if len(excesses(canary, limits)) != 2:
        raise SystemExit(f'bench: the guard let the canary pass: {canary["get"]}')
    print(f'bench: the canary is noticed: {canary["get"]}')
    for name, figure in figures.items():
        print(f'{name:16} {figure["instructions"]:7.4f} of {limits[name]["instructions"]:7.4f} '
              f'{figure["allocations"]:8.1f} of {limits[name]["allocations"]:8.1f}')
    found = excesses(figures, limits)
    for line in found:
        print('bench: ' + line)
    return not found
