"""Runs the programs of bench/ and reads what they count and time.

Figures are kept as figures[client][subject][name], where name is one of instructions, allocations,
peak, copied, descriptors and body; all but the peak are those of one run of the subject.
"""

import json
import os
import re
import shlex
import statistics
import subprocess
import tempfile

PEERS = ['library', 'bare', 'curlpp', 'poco', 'httplib', 'beast']
CLIENTS = PEERS + ['file', 'contract']
POLLS = ['1', '100', '1000', '10000']
# What people call the exchanges.
TITLES = {'get': 'GET, small reply', 'get-8mb': 'GET of 8 MB', 'upload-1kb': 'upload of 1 KB',
          'upload-1mb': 'upload of 1 MB', 'upload-file': 'upload of a 1 GiB file',
          'poll-1': 'poll, 1 command', 'poll-100': 'poll, 100 commands',
          'poll-1000': 'poll, 1,000 commands', 'poll-10000': 'poll, 10,000 commands',
          'threads-1': 'threads-1', 'threads-4': 'threads-4', 'threads-16': 'threads-16'}
# What threads do at once, the plugin of qemu does not count exactly.
COUNTED = {'amd64': 'all',
           'armhf': ','.join(['get', 'get-8mb', 'upload-1kb', 'upload-1mb', 'upload-file',
                              'hardware-read', 'hardware-write', 'encode-plain', 'encode-worst'] +
                             [f'{kind}-{count}' for kind in ['poll', 'reply', 'parse', 'decode']
                              for count in POLLS])}
SERVER = 'build/bench-amd64/tests/responder/with_server'
TIMES = 'build/bench-amd64/bench/bench_times'
PLUGIN = 'build/bench-amd64/bench/libbench_qemu.so'
SYSROOT = 'build/armhf-sysroot'
ENVIRONMENT = ['env', 'no_proxy=127.0.0.1', 'NO_PROXY=127.0.0.1']
# Copying by "rep movsb" would count as one instruction for each byte.
TUNABLES = 'GLIBC_TUNABLES=glibc.cpu.x86_rep_movsb_threshold=1000000000000'


def program(arch, name):
    return f'build/bench-{arch}/bench/{name}'


def counting(arch, client, file, batches, subjects):
    """The command that runs the subjects; the server puts its address behind it."""
    return [program(arch, 'bench_counts'), client, file, str(batches), subjects]


def pinned(command):
    """On one processor, so that the server's turns always come when the client waits."""
    return [*ENVIRONMENT, 'taskset', '-c', str(min(os.sched_getaffinity(0))), SERVER, *command]


def callgrind_command(arguments, folder):
    return pinned(['env', TUNABLES, 'valgrind', '-q', '--tool=callgrind',
                   f'--callgrind-out-file={folder}/out', *counting(*arguments)])


def heap_command(arguments):
    arch = arguments[0]
    preload = f'LD_PRELOAD={program(arch, "libbench_heap.so")}'
    run_by = ['env'] if arch == 'amd64' else ['qemu-arm', '-L', SYSROOT, '-E']
    return pinned([*run_by, preload, *counting(*arguments)])


def qemu_command(arguments, folder):
    return pinned(['qemu-arm', '-L', SYSROOT, '-plugin', f'{PLUGIN},out={folder}/out',
                   *counting(*arguments)])


def times_command(file, repetitions, out, only='.'):
    return [*ENVIRONMENT, SERVER, TIMES, f'--benchmark_filter={only}',
            f'--benchmark_repetitions={repetitions}', '--benchmark_min_time=0.05',
            '--benchmark_enable_random_interleaving=true', f'--benchmark_out={out}',
            '--benchmark_out_format=json', file]


def run(command):
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=False)
    if done.returncode != 0:
        raise SystemExit(f'bench: failed with {done.returncode}: {shlex.join(command)}')
    return done.stdout.splitlines()


def parts(name):
    """A batch's name: the subject, the runs in it and the bytes of body."""
    subject, runs, body = name.split(':')
    return subject, int(runs), int(body)


def medians(batches, field):
    """batches: pairs of a name and a number for all of its runs."""
    numbers = {}
    for name, number in batches:
        numbers.setdefault(name, []).append(number)
    figures = {}
    for name, all_of_name in numbers.items():
        subject, runs, body = parts(name)
        figures[subject] = {'body': body, field: statistics.median(all_of_name) / runs}
    return figures


def expect(names, counted):
    if len(names) != counted:
        raise SystemExit(f'bench: {len(names)} regions, but {counted} counts')


def by_callgrind(arguments):
    with tempfile.TemporaryDirectory() as folder:
        names = run(callgrind_command(arguments, folder))
        batches = []
        for dump in os.listdir(folder):
            with open(os.path.join(folder, dump), encoding='utf-8') as file:
                text = file.read()
            name = re.search(r'^desc: Trigger: Client Request: (\S+)', text, re.M)
            total = re.search(r'^(?:totals|summary): (\d+)', text, re.M)
            if name:
                batches.append((name.group(1), int(total.group(1))))
    expect(names, len(batches))
    return medians(batches, 'instructions')


def by_qemu(arguments):
    with tempfile.TemporaryDirectory() as folder:
        names = run(qemu_command(arguments, folder))
        with open(os.path.join(folder, 'out'), encoding='utf-8') as file:
            counts = [int(line) for line in file]
    expect(names, len(counts))
    return medians(zip(names, counts), 'instructions')


def by_heap(arguments):
    figures = {}
    for line in run(heap_command(arguments)):
        name, *numbers = line.split()
        subject, runs, _ = parts(name)
        allocations, peak, copied, descriptors = map(int, numbers)
        figures[subject] = {'allocations': allocations / runs, 'peak': peak,
                            'copied': copied / runs, 'descriptors': descriptors}
    return figures


def counts(arch, client, file, batches, subjects='all', heap_subjects=None):
    """What is in `heap_subjects` alone has no instructions."""
    arguments = (arch, client, file, batches, subjects)
    figures = by_callgrind(arguments) if arch == 'amd64' else by_qemu(arguments)
    for subject, found in by_heap((arch, client, file, 1, heap_subjects or subjects)).items():
        figures[subject] = {**figures.get(subject, {}), **found}
    return figures


def times(file, repetitions, only='.'):
    """times[client][subject]: the quartiles of one run in nanoseconds, and then those of the time
    that the client itself had the processor."""
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, 'times.json')
        run(times_command(file, repetitions, out, only))
        with open(out, encoding='utf-8') as written:
            runs = json.load(written)['benchmarks']
    samples = {}
    for entry in runs:
        if entry['run_type'] == 'iteration':
            subject, client = entry['run_name'].split('/')[:2]
            samples.setdefault(client, {}).setdefault(subject, []).append(entry)
    return {client: {subject: quartiles(entries, 'real_time') + quartiles(entries, 'cpu_time')
                     for subject, entries in subjects.items()}
            for client, subjects in samples.items()}


def quartiles(entries, field):
    return statistics.quantiles([entry[field] for entry in entries], n=4)


def add_decoding(figures):
    """The library's decoding is what its poll takes beyond a GET of the same body."""
    library = figures['library']
    for number in POLLS:
        poll, reply = library.get('poll-' + number), library.get('reply-' + number)
        if poll and reply:
            library['decode-' + number] = {
                'body': poll['body'],
                **{field: poll[field] - reply[field] for field in ['instructions', 'allocations']}}
