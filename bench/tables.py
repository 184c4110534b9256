"""The tables of docs/performance.md."""

import textwrap

import goals
from measure import PEERS, POLLS, TITLES

# Of a body of a few bytes, copies are no measure.
WITH_BODY = [name for name in TITLES if name != 'get' and not name.startswith('threads-')]
WHO = {'bare': 'by hand', 'file': 'by hand, file by mkstemp()', 'contract': 'by hand as the contract has it'}
UPLOADS = [(name, client) for name in ['upload-1kb', 'upload-1mb']
           for client in ['bare', 'file', 'contract', 'library']]
LOCAL = [('hardware-read', 'bare'), ('hardware-read', 'contract'), ('hardware-read', 'library'),
         ('hardware-write', 'bare'), ('hardware-write', 'library')]
LOCAL += [(name, client) for name in ['encode-plain', 'encode-worst']
          for client in ['bare', 'curlpp', 'poco', 'contract', 'library']]
LOCAL_TITLES = {'hardware-read': 'hardware list read', 'hardware-write': 'hardware list written',
                'encode-plain': '1 KB that needs no escape', 'encode-worst': '1 KB of escapes'}


def wrapped(text):
    return '\n'.join(textwrap.wrap(text, 100, break_on_hyphens=False))


def table(head, rows):
    lines = ['| ' + ' | '.join(head) + ' |', '|---' * len(head) + '|']
    return '\n'.join(lines + ['| ' + ' | '.join(row) + ' |' for row in rows])


def duration(nanoseconds):
    for unit, size in [('s', 1e9), ('ms', 1e6), ('µs', 1e3)]:
        if nanoseconds >= size:
            return f'{nanoseconds / size:.3g} {unit}'
    return f'{nanoseconds:.0f} ns'


def spread(times):
    return f'{duration(times[1])} ({duration(times[0])} to {duration(times[2])})'


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
    return list(counted) + [(goal, None) for goal in goals.timed_goals(figures['close_times'])]


def close_times(times):
    """What the goals of time are made of."""
    rows = []
    for client in ['library', 'bare']:
        upload, load = times[client]['upload-file'], times[client]['load']
        rows += [[f'{client}: upload of a 1 GiB file, by the clock', spread(upload[:3])],
                 [f'{client}: the same, processor time', spread(upload[3:])],
                 [f'{client}: loading, processor time', spread(load[:3])]]
    return table(['Time', 'median, with quartiles'], rows)


def over_bare(figures):
    rows = []
    for name, title in TITLES.items():
        if 'instructions' in figures['bare'][name]:
            bare = figures['bare'][name]['instructions']
            rows.append([title] + [f'{figures[client][name]["instructions"] / bare:.3f}'
                                   for client in PEERS] + [number(bare)])
    return table(['Exchange'] + PEERS + ['instructions of bare'], rows)


def times_over_bare(times):
    rows = []
    for name, title in TITLES.items():
        bare = times['bare'][name]
        rows.append([title] + [f'{times[client][name][1] / bare[1]:.2f}' for client in PEERS] +
                    [spread(bare)])
    return table(['Exchange'] + PEERS + ['bare, with quartiles'], rows)


def absolute(figures, field):
    scale = 1024 if field == 'peak' else 1
    return table(['Exchange'] + PEERS,
                 [[title] + [number(figures[client][name][field] / scale) for client in PEERS]
                  for name, title in TITLES.items()])


def copied(figures):
    return table(['Exchange'] + PEERS,
                 [[TITLES[name]] + [f'{figures[client][name]["copied"] / figures[client][name]["body"]:.2f}'
                                    for client in PEERS] for name in WITH_BODY])


def beside_bare(figures, listed, times=None):
    """All figures of some clients' subjects, the first two over those of bare."""
    rows = []
    for name, client in listed:
        found, bare = figures[client][name], figures['bare'][name]
        title = {**TITLES, **LOCAL_TITLES}[name]
        row = [f'{title}, {WHO.get(client, client)}',
               f'{found["instructions"] / bare["instructions"]:.3f}']
        if times:
            row.append(f'{times[client][name][1] / times["bare"][name][1]:.2f}')
        rows.append(row + [number(found['instructions']), number(found['allocations']),
                           f'{found["peak"] / 1024:,.1f}', f'{found["copied"] / found["body"]:.2f}'])
    return table(['Work', 'instructions over by hand'] + (['time over by hand'] if times else []) +
                 ['instructions', 'allocations', 'peak heap, KiB', 'bytes copied for one'], rows)


def decoding(figures, times=None):
    """Decoding over one parse by the library, by hand as the contract has it, and by hand."""
    rows = []
    for count in POLLS:
        name, parse = f'decode-{count}', figures['bare'][f'parse-{count}']
        clients = ['library', 'contract', 'bare']
        row = [f'{int(count):,}'] + [f'{figures[client][name]["instructions"] / parse["instructions"]:.2f}'
                                     for client in clients] + [number(parse['instructions'])]
        row += [number(figures[client][name]['allocations']) for client in clients]
        row.append(number(parse['allocations']))
        if times:
            library = times['library'][f'poll-{count}'][1] - times['library'][f'reply-{count}'][1]
            parse_time = times['bare'][f'parse-{count}'][1]
            row += [f'{library / parse_time:.2f}', duration(parse_time)]
        rows.append(row)
    head = ['library', 'as the contract has it', 'by hand', 'one parse']
    return table(['Commands'] + [f'instructions: {head[0]}'] + head[1:] + [f'allocations: {head[0]}'] +
                 head[1:] + ([f'time: {head[0]}', head[3]] if times else []), rows)
