"""The tables of docs/performance.md."""

import textwrap

import goals
from measure import TITLES

PEERS = ['library', 'bare', 'curlpp', 'poco', 'httplib', 'beast']
LARGE = [name for name in TITLES if not name.startswith(('poll-', 'threads-')) and name != 'get']


def wrapped(text):
    return textwrap.wrap(text, 100, break_on_hyphens=False)


def table(head, rows):
    lines = ['| ' + ' | '.join(head) + ' |', '|---' * len(head) + '|']
    return '\n'.join(lines + ['| ' + ' | '.join(row) + ' |' for row in rows])


def duration(nanoseconds):
    for unit, size in [('s', 1e9), ('ms', 1e6), ('µs', 1e3)]:
        if nanoseconds >= size:
            return f'{nanoseconds / size:.3g} {unit}'
    return f'{nanoseconds:.0f} ns'


def number(value):
    return f'{value:,.0f}'


def goals_table(figures):
    rows = []
    for amd64, armhf in goal_pairs(figures):
        met = amd64['met'] and (armhf is None or armhf['met'])
        rows.append([amd64['text'], f'{amd64["sign"]} {amd64["limit"]}', amd64['value'],
                     armhf['value'] if armhf else '-', 'met' if met else 'MISSED'])
    return table(['Figure', 'Goal', 'amd64', 'armhf', ''], rows)


def goal_pairs(figures):
    """Every goal for amd64 with the same one for armhf, if that is for armhf too."""
    counted = zip(goals.counted_goals(figures['amd64']), goals.counted_goals(figures['armhf']))
    return list(counted) + [(goal, None) for goal in goals.timed_goals(figures)]


def over_bare(figures):
    rows = []
    for name, title in TITLES.items():
        if name in figures['bare']:
            bare = figures['bare'][name]['instructions']
            rows.append([title] + [f'{figures[client][name]["instructions"] / bare:.3f}'
                                   for client in PEERS] + [number(bare)])
    return table(['Exchange'] + PEERS + ['instructions of bare'], rows)


def times_over_bare(times):
    rows = []
    for name, title in TITLES.items():
        bare = times['bare'][name][1]
        rows.append([title] + [f'{times[client][name][1] / bare:.2f}' for client in PEERS] +
                    [f'{duration(bare)} ({duration(times["bare"][name][0])} to '
                     f'{duration(times["bare"][name][2])})'])
    return table(['Exchange'] + PEERS + ['bare, with quartiles'], rows)


def absolute(figures, field):
    scale = 1024 if field == 'peak' else 1
    return table(['Exchange'] + PEERS,
                 [[title] + [number(figures[client][name][field] / scale) for client in PEERS]
                  for name, title in TITLES.items() if name in figures['bare']])


def copied(figures):
    return table(['Exchange'] + PEERS,
                 [[TITLES[name]] + [f'{figures[client][name]["copied"] / figures[client][name]["body"]:.2f}'
                                    for client in PEERS] for name in LARGE])


def uploads(figures, times):
    rows = []
    for name in ['upload-1kb', 'upload-1mb']:
        for client, who in [('bare', 'by hand, from memory'), ('file', 'by hand, file by mkstemp()'),
                            ('contract', "by hand, the framework's file"), ('library', 'library')]:
            found, bare = figures[client][name], figures['bare'][name]
            rows.append([f'{TITLES[name]}, {who}',
                         f'{found["instructions"] / bare["instructions"]:.3f}',
                         f'{times[client][name][1] / times["bare"][name][1]:.2f}',
                         number(found['allocations']), number(found['peak'] / 1024),
                         f'{found["copied"] / found["body"]:.2f}'])
    return table(['Upload', 'instructions', 'time', 'allocations', 'peak heap, KiB',
                  'bytes copied for one'], rows)


def decoded(figures, count):
    """Instructions of decoding by the library, by hand from one parse, and as the contract has it."""
    parse = figures['bare']['parse-' + count]['instructions']
    return [f'{figures[client]["decode-" + count]["instructions"] / parse:.2f}'
            for client in ['library', 'contract', 'bare']] + [number(parse)]


def decoding(figures):
    rows = []
    for count in goals.POLLS:
        rows.append([f'{int(count):,}'] + decoded(figures, count) + [
            number(figures['library']['decode-' + count]['allocations']),
            number(figures['bare']['parse-' + count]['allocations'])])
    return table(['Commands', 'instructions: library', 'by hand, each item as text again',
                  'by hand from one parse', 'of one parse', 'allocations: library', 'one parse'],
                 rows)


def contract_of_armhf(figures):
    rows = [['decoding of ' + f'{int(count):,}'] + decoded(figures, count)
            for count in goals.POLLS]
    for name in ['upload-1kb', 'upload-1mb']:
        bare = figures['bare'][name]['instructions']
        rows.append([TITLES[name]] +
                    [f'{figures[client][name]["instructions"] / bare:.2f}'
                     for client in ['library', 'contract', 'bare']] + [number(bare)])
    return table(['Figure', 'library', 'by hand as the contract has it', 'by hand', 'of one parse, or of bare'],
                 rows)


def local(figures, times):
    rows = []
    for name, title in [('hardware-read', 'hardware list read'),
                        ('hardware-write', 'hardware list written'),
                        ('encode-plain', 'EncodeURL, plain'), ('encode-worst', 'EncodeURL, worst')]:
        library, bare = figures['library'][name], figures['bare'][name]
        contract = figures['contract'].get(name, bare)
        rows.append([title, f'{library["instructions"] / bare["instructions"]:.2f}',
                     f'{contract["instructions"] / bare["instructions"]:.2f}',
                     number(bare['instructions']),
                     f'{times["library"][name][1] / times["bare"][name][1]:.2f}',
                     duration(times['bare'][name][1]), number(library['allocations']),
                     number(contract['allocations']), number(bare['allocations'])])
    return table(['Work', 'instructions: library', 'by hand as the contract has it', 'by hand',
                  'time: library', 'by hand', 'allocations: library',
                  'by hand as the contract has it', 'by hand'], rows)
