"""Writes docs/performance.md from the figures."""

import platform
import subprocess

import measure
import tables

PATH = 'docs/performance.md'

TEXT = """# Performance

What the library costs beside hand-written libcurl and beside other clients, as `scripts/bench`
measured it on {date}. It writes this page.

Machine: {machine}.
{versions}

Goals are set on what is counted: instructions, allocations, bytes. That repeats, to about a hundredth
of the instructions, whatever else the machine does. {load}

Compared are, each with a connection of its own for each exchange and against the same responder:

- **library**: a host as in the README, its log thrown away
- **bare**: the least program over libcurl that does the same: the same options on a fresh handle, the
  same form, the status asked for, the headers not kept
- **curlpp**, **Poco** Net, **httplib** (cpp-httplib) and Boost.**Beast**: as their documentation has
  it. Content is sent from memory. A poll is one parse, from which the records are filled.

## Goals

{goals}

The last three are of the least time, since other work on the machine only adds to one: throughput of
101 repetitions in mixed order, and loading of {repetitions}. Processor time is that of the client alone,
and of the program that is loaded.

"By hand through the file" is bare, but with the temporary file that the upload's format names, made
with the framework's types, as the contract has it.

![Instructions and times of each client, in multiples of hand-written libcurl](performance.svg)

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

Bytes copied for each byte of body, the kernel's copies from and to sockets and files included:

{copied}

`threads-N` are N threads that each make four small GETs with one client.

## What the contract costs

An upload's content has to pass through a temporary file of the framework's, whose type copies it.
Over the program that sends it from memory:

{uploads}

Each command of a poll, and its position, is turned back to text and parsed again. Over one parse of
the whole body with `Json::Reader`; decoding is what `Poll` takes beyond a GET of the same body:

{decoding}

## Documents and addresses

Over the same by hand: a list of 1,000 pieces of hardware through one parse, and libcurl's escape
function for 1 KB that needs no escape and for 1 KB that needs nothing else. The contract has each
entry that is read turned back to text and parsed again, and each escape written by the framework's
`ultos`:

{local}

## Exchanges, armhf

The target's object under qemu-arm. Instructions over bare's, and bare's own:

{armhf_instructions}

Allocations for one run:

{armhf_allocations}

Most heap in use beyond what was in use before, in KiB:

{armhf_peak}

Decoding, and what else the contract costs, in instructions:

{armhf_decoding}

## Commands

From the root of the tree, after `scripts/bench` has built `build/bench-amd64` and
`build/bench-armhf`; here for the library, with a large file of 1 GiB at /tmp/large. Instructions, under
callgrind (every file `/tmp/out.*` has the name of its subject, its runs and its bytes of body), and
under qemu-arm with a plugin (a line for each batch):

    {callgrind}
    {qemu}

Allocations, peak heap, bytes copied and descriptors, on standard output:

    {heap}

Times:

    {timing}

A figure of instructions is the median of {batches} batches of up to 20 runs, of three for those that take
long, and of one for the large file. What an allocation takes depends on those before it, so each batch
begins with another heap, the same for all. The programs run on one processor, so that the responder's
turn is always when the client waits, and with copies by `rep movsb` switched off, which callgrind
counts byte by byte. Times are medians of {repetitions} repetitions in mixed order.

`scripts/bench --check` compares instructions and allocations with `bench/limits.json` and fails when
one is more than two hundredths above, and when it does not notice a client that is made to cost
more; `scripts/bench --keep` renews that file.
"""


def output(command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()


def machine():
    with open('/proc/cpuinfo', encoding='utf-8') as file:
        cpus = [line.split(':')[1].strip() for line in file if line.startswith('model name')]
    with open('/etc/os-release', encoding='utf-8') as file:
        system = [line.split('"')[1] for line in file if line.startswith('PRETTY_NAME')]
    return f'{len(cpus)} processors {cpus[0]}, {system[0]}, Linux {platform.release()}'


def versions():
    names = ['libcurl4', 'libjsoncpp25', 'libcurlpp0', 'libpoco-dev', 'libcpp-httplib0.11',
             'libboost1.74-dev', 'libbenchmark-dev', 'valgrind', 'qemu-user']
    found = []
    for name in names:
        version = subprocess.run(['dpkg-query', '-W', '-f', '${Version}', name],
                                 capture_output=True, text=True, check=False).stdout
        found.append(f'{name} {version}' if version else name)
    compilers = [output([compiler, '--version']).splitlines()[0]
                 for compiler in ['g++', 'arm-linux-gnueabihf-g++']]
    return '\n'.join(tables.wrapped(', '.join(found + compilers) + '.'))


def load(averages):
    return '\n'.join(tables.wrapped(
        f'Times do not; the load averages over 1, 5 and 15 minutes were {averages[0]} before they '
        f'were taken and {averages[1]} after. Each is a median, and the quartiles of bare show how '
        'far to trust it.'))


def write(figures):
    amd64, armhf, times = figures['amd64'], figures['armhf'], figures['times']
    example = ('library', '/tmp/large')
    amd64_arguments = ('amd64', *example, figures['batches'], 'all')
    armhf_arguments = ('armhf', *example, figures['batches'], 'all')
    text = TEXT.format(
        date=figures['date'], machine=machine(), versions=versions(), load=load(figures['load']),
        goals=tables.goals_table(figures),
        times=tables.times_over_bare(times), instructions=tables.over_bare(amd64),
        allocations=tables.absolute(amd64, 'allocations'), peak=tables.absolute(amd64, 'peak'),
        descriptors=tables.absolute(amd64, 'descriptors'), copied=tables.copied(amd64),
        uploads=tables.uploads(amd64, times), decoding=tables.decoding(amd64),
        local=tables.local(amd64, times),
        armhf_instructions=tables.over_bare(armhf),
        armhf_allocations=tables.absolute(armhf, 'allocations'),
        armhf_peak=tables.absolute(armhf, 'peak'), armhf_decoding=tables.contract_of_armhf(armhf),
        callgrind=measure.callgrind_command(amd64_arguments, '/tmp'),
        qemu=measure.qemu_command(armhf_arguments, '/tmp'),
        heap=measure.heap_command(('amd64', *example, 1, 'all')),
        timing=measure.times_command('/tmp/large', figures['repetitions'], '/tmp/times.json'),
        batches=figures['batches'], repetitions=figures['repetitions'])
    with open(PATH, 'w', encoding='utf-8') as file:
        file.write(text)
