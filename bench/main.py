"""What scripts/bench does when everything is built. Usage: main.py all|check|keep"""

import datetime
import json
import os
import sys
import tempfile

import chart
import document
import guard
import measure
import tables

RESULTS = 'build/bench-results.json'
GIB = 1024 ** 3
BATCHES = 30
REPETITIONS = 11
# Goals of hundredths want more, since a transfer's time varies by tenths.
CLOSE_REPETITIONS = 101
CLOSE_SUBJECTS = '^(upload-file|load)/(library|bare)'


def large_file(folder, size):
    """A file whose bytes differ by their place."""
    path = os.path.join(folder, 'large')
    block = bytes((i * 7 + i // 251) % 256 for i in range(1 << 20))
    with open(path, 'wb') as file:
        for _ in range(size >> 20):
            file.write(block)
    return path


def progress(text):
    print(f'bench: {text}', file=sys.stderr)


def measure_all(folder):
    file = large_file(folder, GIB)
    figures = {'date': datetime.date.today().isoformat(), 'batches': BATCHES,
               'repetitions': REPETITIONS, 'close_repetitions': CLOSE_REPETITIONS,
               'close_subjects': CLOSE_SUBJECTS}
    for arch in ['amd64', 'armhf']:
        figures[arch] = {}
        for client in measure.CLIENTS:
            progress(f'counting {client}, {arch}')
            figures[arch][client] = measure.counts(arch, client, file, BATCHES,
                                                   measure.COUNTED[arch], 'all')
        measure.add_decoding(figures[arch])
    progress('taking times')
    figures['load'] = [' '.join(f'{load:.1f}' for load in os.getloadavg())]
    figures['times'] = measure.times(file, REPETITIONS)
    figures['close_times'] = measure.times(file, CLOSE_REPETITIONS, CLOSE_SUBJECTS)
    figures['load'].append(' '.join(f'{load:.1f}' for load in os.getloadavg()))
    return figures


def everything():
    with tempfile.TemporaryDirectory() as folder:
        figures = measure_all(folder)
    with open(RESULTS, 'w', encoding='utf-8') as file:
        json.dump(figures, file, indent=1)
    document.write(figures)
    chart.write(figures)
    print(tables.goals_table(figures))
    return all(goal['met'] for pair in tables.goal_pairs(figures) for goal in pair if goal)


def main(mode):
    if mode == 'all':
        return everything()
    with tempfile.TemporaryDirectory() as folder:
        figures, canary = guard.measured(large_file(folder, 16 << 20))
    if mode == 'keep' and not guard.keep(figures):
        return False
    return guard.check(figures, canary)


if __name__ == '__main__':
    sys.exit(0 if main(sys.argv[1]) else 1)
