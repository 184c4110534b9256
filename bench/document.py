"""Writes docs/performance.md from the figures."""

import platform
import shlex
import subprocess

import measure
import tables

PATH = 'docs/performance.md'
PACKAGES = ['libcurl4', 'libjsoncpp25', 'libcurlpp0', 'libpoco-dev', 'libcpp-httplib0.11',
            'libboost1.74-dev', 'libbenchmark-dev', 'valgrind', 'qemu-user']

TEXT = """# Performance

What the library costs beside hand-written libcurl and beside other clients, as `scripts/bench`
measured it on {date}. It writes this page.

{machine}

{load}

Compared are, each with a connection of its own for each exchange and against the same responder:

- **library**: a host as in the README, its log thrown away
- **bare**: the least program over libcurl that does the same: the same options on a fresh handle, the
  same form, the status asked for, the headers not kept
- **curlpp**, **Poco** Net, **httplib** (cpp-httplib) and Boost.**Beast**: as their documentation has
  it. Content is sent from memory. A poll is one parse, from which the records are filled.

## Goals

{goals}

The last three are of medians of {close_repetitions} repetitions in mixed order; processor time is that of the
client alone, and of the program that is loaded:

{close_times}

"By hand through the file" is bare, but with the temporary file that the upload's format names, made
with the framework's types, as the contract has it. What these cost over a file by `mkstemp()`, the copy
of the content into a `ByteArray` above all, stands under [What the contract costs](#what-the-contract-costs),
as does what a poll's decoding does.

![Instructions, allocations and times of each client, in multiples of hand-written libcurl](performance.svg)

## Exchanges, amd64

Median time over bare's, and bare's own:

{times}

Instructions over bare's, and bare's own:

{instructions}

Allocations for one run:

{allocations}

Most heap in use beyond what was in use before, in KiB:

{peak}

Most descriptors open beyond those open before:

{descriptors}

Bytes copied for each byte of body, the kernel's copies from and to sockets and files included, those
within `realloc()` not:

{copied}

`threads-N` are N threads that each make four small GETs with one client; their heap and descriptors
are those of the run that was looked at, since they depend on who comes first.

## What the contract costs

An upload's content has to pass through a temporary file of the framework's, whose type copies it:

{uploads}

Each command of a poll, and its position, is turned back to text and parsed again. Over one parse of
the whole body with `Json::Reader`; decoding is what `Poll` takes beyond a GET of the same body:

{decoding}

## Documents and addresses

A list of 1,000 pieces of hardware, by hand through one parse, and the escapes of an address, by hand
with libcurl's function. The contract has each entry that is read turned back to text and parsed again,
and each escape written by the framework's `ultos`:

{local}

## Exchanges, armhf

The target's object under qemu-arm, whose plugin does not count exactly what threads do at once.
Instructions over bare's, and bare's own:

{armhf_instructions}

Allocations for one run:

{armhf_allocations}

Most heap in use beyond what was in use before, in KiB:

{armhf_peak}

Uploads through the file:

{armhf_uploads}

Decoding over one parse:

{armhf_decoding}

Documents and addresses:

{armhf_local}

## Commands

From the root of the tree, after `scripts/bench` has built `build/bench-amd64` and
`build/bench-armhf`; here for the library, with a large file of 1 GiB at /tmp/large. Instructions, under
callgrind (every file `/tmp/out.*` has the name of its subject, its runs and its bytes of body), and
under qemu-arm with a plugin (a line for each batch):

    {callgrind}
    {qemu}

Allocations, peak heap, bytes copied and descriptors, on standard output:

    {heap}
    {armhf_heap}

Times, and those that the goals are set on:

    {timing}
    {close_timing}

A figure of instructions is the median of {batches} batches of up to 20 runs, of three for those that take
long, and of one for the large file. What an allocation takes depends on those before it, so each batch
begins with another heap, the same for all. The programs run on one processor, so that the responder's
turn is always when the client waits, and with copies by `rep movsb` switched off, which callgrind
counts byte by byte. The responder answers an upload only when it has arrived whole. Times are medians
of {repetitions} repetitions in mixed order.

`scripts/bench --check` compares instructions and allocations with `bench/limits.json` and with the
goals, and fails when one is more than two hundredths above the former or at all above the latter, and
when it does not notice a client that is made to cost a little more; `scripts/bench --keep` renews that
file.
"""


def output(command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()


def machine():
    with open('/proc/cpuinfo', encoding='utf-8') as file:
        cpus = [line.split(':')[1].strip() for line in file if line.startswith('model name')]
    with open('/etc/os-release', encoding='utf-8') as file:
        system = [line.split('"')[1] for line in file if line.startswith('PRETTY_NAME')]
    versions = [output(['dpkg-query', '-W', '-f', '${Package} ${Version}', name]) for name in PACKAGES]
    compilers = [output([compiler, '--version']).splitlines()[0]
                 for compiler in ['g++', 'arm-linux-gnueabihf-g++']]
    return tables.wrapped(f'Machine: {len(cpus)} processors {cpus[0]}, {system[0]}, '
                          f'Linux {platform.release()}; ' + ', '.join(versions + compilers) + '.')


def load(averages):
    return tables.wrapped(
        'Goals are set on what is counted where they can be: instructions, allocations, bytes. That '
        'repeats, to about a hundredth of the instructions, whatever else the machine does. Times do '
        f'not; the load averages over 1, 5 and 15 minutes were {averages[0]} before they were taken '
        f'and {averages[1]} after. Each is a median, and the quartiles of bare show how far to trust it.')


def commands(figures):
    """One of each kind, as a user would type it."""
    def arguments(arch, batches, subjects):
        return (arch, 'library', '/tmp/large', batches, subjects)

    batches, counted = figures['batches'], measure.COUNTED
    found = {
        'callgrind': measure.callgrind_command(arguments('amd64', batches, counted['amd64']), '/tmp'),
        'qemu': measure.qemu_command(arguments('armhf', batches, counted['armhf']), '/tmp'),
        'heap': measure.heap_command(arguments('amd64', 1, 'all')),
        'armhf_heap': measure.heap_command(arguments('armhf', 1, 'all')),
        'timing': measure.times_command('/tmp/large', figures['repetitions'], '/tmp/times.json'),
        'close_timing': measure.times_command('/tmp/large', figures['close_repetitions'],
                                              '/tmp/times.json', figures['close_subjects'])}
    return {name: shlex.join(command) for name, command in found.items()}


def write(figures):
    amd64, armhf, times = figures['amd64'], figures['armhf'], figures['times']
    text = TEXT.format(
        date=figures['date'], machine=machine(), load=load(figures['load']),
        goals=tables.goals_table(figures), close_times=tables.close_times(figures['close_times']),
        times=tables.times_over_bare(times), instructions=tables.over_bare(amd64),
        allocations=tables.absolute(amd64, 'allocations'), peak=tables.absolute(amd64, 'peak'),
        descriptors=tables.absolute(amd64, 'descriptors'), copied=tables.copied(amd64),
        uploads=tables.beside_bare(amd64, tables.UPLOADS, times),
        decoding=tables.decoding(amd64, times),
        local=tables.beside_bare(amd64, tables.LOCAL, times),
        armhf_instructions=tables.over_bare(armhf),
        armhf_allocations=tables.absolute(armhf, 'allocations'),
        armhf_peak=tables.absolute(armhf, 'peak'),
        armhf_uploads=tables.beside_bare(armhf, tables.UPLOADS),
        armhf_decoding=tables.decoding(armhf), armhf_local=tables.beside_bare(armhf, tables.LOCAL),
        batches=figures['batches'], repetitions=figures['repetitions'],
        close_repetitions=figures['close_repetitions'], **commands(figures))
    with open(PATH, 'w', encoding='utf-8') as file:
        file.write(text)
