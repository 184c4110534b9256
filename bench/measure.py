"""Runs the programs of bench/ and reads what they count and time.

Figures are kept as figures[client][subject][name], where name is one of instructions, allocations,
peak, copied, descriptors and body; all but the peak are those of one run of the subject.
"""

import json
import os
import re
import statistics
import subprocess
import tempfile

CLIENTS = ['library', 'bare', 'file', 'contract', 'curlpp', 'poco', 'httplib', 'beast']
# What people call the exchanges.
TITLES = {'get': 'GET, small reply', 'get-8mb': 'GET of 8 MB', 'upload-1kb': 'upload of 1 KB',
          'upload-1mb': 'upload of 1 MB', 'upload-file': 'upload of a 1 GiB file',
          'poll-1': 'poll, 1 command', 'poll-100': 'poll, 100 commands',
          'poll-1000': 'poll, 1,000 commands', 'poll-10000': 'poll, 10,000 commands',
          'threads-1': 'threads-1', 'threads-4': 'threads-4', 'threads-16': 'threads-16'}
SERVER = 'build/bench-amd64/tests/responder/with_server'
TIMES = 'build/bench-amd64/bench/bench_times'
PLUGIN = 'build/bench-amd64/bench/libbench_qemu.so'
SYSROOT = 'build/armhf-sysroot'
# Copying by "rep movsb" would count as one instruction for each byte.
TUNABLES = 'GLIBC_TUNABLES=glibc.cpu.x86_rep_movsb_threshold=1000000000000'


def program(arch, name):
    return f'build/bench-{arch}/bench/{name}'


def counting(arch, client, file, batches, subjects):
    """The command that runs the subjects; the server puts its address behind it."""
    return f'{program(arch, "bench_counts")} {client} {file} {batches} {subjects}'


# On one processor, so that the server's turns always come when the client waits.
def pinned(command):
    return f'taskset -c {min(os.sched_getaffinity(0))} {SERVER} {command}'


def callgrind_command(arguments, folder):
    return pinned(f'env {TUNABLES} valgrind -q --tool=callgrind '
                  f'--callgrind-out-file={folder}/out {counting(*arguments)}')


def heap_command(arguments):
    arch = arguments[0]
    preload = f'LD_PRELOAD={program(arch, "libbench_heap.so")}'
    run = f'env {preload}' if arch == 'amd64' else f'qemu-arm -L {SYSROOT} -E {preload}'
    return pinned(f'{run} {counting(*arguments)}')


def qemu_command(arguments, folder):
    return pinned(f'qemu-arm -L {SYSROOT} -plugin {PLUGIN},out={folder}/out {counting(*arguments)}')


def times_command(file, repetitions, out, only='.'):
    return (f'{SERVER} {TIMES} --benchmark_filter={only} --benchmark_repetitions={repetitions} '
            '--benchmark_min_time=0.05 --benchmark_enable_random_interleaving=true '
            f'--benchmark_out={out} --benchmark_out_format=json {file}')


def run(command):
    environment = {**os.environ, 'no_proxy': '127.0.0.1', 'NO_PROXY': '127.0.0.1'}
    done = subprocess.run(command.split(), env=environment, stdout=subprocess.PIPE, text=True,
                          check=False)
    if done.returncode != 0:
        raise SystemExit(f'bench: failed with {done.returncode}: {command}')
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


def by_callgrind(arguments):
    with tempfile.TemporaryDirectory() as folder:
        run(callgrind_command(arguments, folder))
        batches = []
        for dump in os.listdir(folder):
            with open(os.path.join(folder, dump), encoding='utf-8') as file:
                text = file.read()
            name = re.search(r'^desc: Trigger: Client Request: (\S+)', text, re.M)
            total = re.search(r'^(?:totals|summary): (\d+)', text, re.M)
            if name:
                batches.append((name.group(1), int(total.group(1))))
    return medians(batches, 'instructions')


def by_qemu(arguments):
    with tempfile.TemporaryDirectory() as folder:
        names = run(qemu_command(arguments, folder))
        with open(os.path.join(folder, 'out'), encoding='utf-8') as file:
            counts = [int(line) for line in file]
    if len(names) != len(counts):
        raise SystemExit(f'bench: {len(names)} regions, but {len(counts)} counts')
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


def merged(first, second):
    figures = {}
    for subject, found in first.items():
        figures[subject] = {**found, **second[subject]}
    return figures


def counts(arch, client, file, batches, subjects='all'):
    arguments = (arch, client, file, batches, subjects)
    instructions = by_callgrind(arguments) if arch == 'amd64' else by_qemu(arguments)
    return merged(instructions, by_heap((arch, client, file, 1, subjects)))


def times(file, repetitions, only='.'):
    """times[client][subject]: the quartiles of one run in nanoseconds, the least, and the least
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
    return {client: {subject: summary(entries) for subject, entries in subjects.items()}
            for client, subjects in samples.items()}


def summary(entries):
    taken = [entry['real_time'] for entry in entries]
    return statistics.quantiles(taken, n=4) + [min(taken),
                                                min(entry['cpu_time'] for entry in entries)]


def add_decoding(figures):
    """The library's decoding is what its poll takes beyond a GET of the same body."""
    library = figures['library']
    for number in ['1', '100', '1000', '10000']:
        poll, reply = library.get('poll-' + number), library.get('reply-' + number)
        if poll and reply:
            library['decode-' + number] = {
                'body': poll['body'],
                **{field: poll[field] - reply[field] for field in ['instructions', 'allocations']}}
