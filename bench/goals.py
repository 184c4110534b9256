"""What the figures are compared with, and what they have to reach."""

from measure import POLLS, TITLES

# By hand, the same upload goes through the same temporary file, and is sent from memory in the
# tables of peers.
BY_HAND = {'upload-1kb': 'contract', 'upload-1mb': 'contract'}
# The most instructions over by hand, and the most allocations beyond it.
INSTRUCTIONS = {'get': 1.02, 'get-8mb': 1.02, 'upload-1kb': 1.10, 'upload-1mb': 1.10,
                **{f'decode-{count}': 4.0 for count in POLLS}}
ALLOCATIONS = {'get': 12, 'get-8mb': 12}
EXCHANGES = ['get', 'get-8mb', 'upload-1kb', 'upload-1mb', 'upload-file']


def by_hand(figures, subject):
    if subject.startswith('decode-'):
        return figures['bare'][subject.replace('decode', 'parse')]
    return figures[BY_HAND.get(subject, 'bare')][subject]


def by_hand_text(subject):
    if subject.startswith('decode-'):
        return f'{TITLES[subject.replace("decode", "poll")]}: decoding over one parse'
    what = 'by hand through the file' if subject in BY_HAND else 'bare'
    return f'{TITLES[subject]}: instructions over {what}'


def ratio(figures, subject, field='instructions'):
    return figures['library'][subject][field] / by_hand(figures, subject)[field]


def difference(figures, subject, field='allocations'):
    return figures['library'][subject][field] - by_hand(figures, subject)[field]


def goal(text, value, limit, form, at_least=False):
    met = value >= limit if at_least else value <= limit
    return {'text': text, 'value': form.format(value), 'limit': form.format(limit),
            'met': met, 'sign': 'at least' if at_least else 'at most'}


def linear(figures):
    """The cost of a command among many, over that of one among a hundred."""
    cost = {number: figures['library']['decode-' + number]['instructions'] / int(number)
            for number in POLLS[1:]}
    return max(cost['1000'], cost['10000']) / cost['100']


def fewer_than_curlpp(figures):
    """For each exchange, how many allocations fewer; of a poll, if curlpp's user decoded likewise."""
    allocations = {client: {name: found['allocations'] for name, found in subjects.items()}
                   for client, subjects in figures.items()}
    fewer = {f'{TITLES[name]}: allocations fewer than curlpp':
             allocations['curlpp'][name] - allocations['library'][name] for name in EXCHANGES}
    for count in POLLS:
        poll, decode = f'poll-{count}', f'decode-{count}'
        likewise = allocations['contract'][decode] - allocations['bare'][decode]
        fewer[f'{TITLES[poll]}: allocations fewer than curlpp and decoding as the contract has it'] = (
            allocations['curlpp'][poll] + likewise - allocations['library'][poll])
    return fewer


def counted_goals(figures):
    """Those that need no clock, for one kind of machine."""
    ratio_form, count_form = '{:.3f}', '{:.0f}'
    goals = [goal(by_hand_text(name), ratio(figures, name), most, ratio_form)
             for name, most in INSTRUCTIONS.items()]
    goals += [goal(f'{TITLES[name]}: allocations beyond bare', difference(figures, name), most,
                   count_form) for name, most in ALLOCATIONS.items()]
    goals.append(goal('upload of a 1 GiB file: peak heap in KiB',
                      figures['library']['upload-file']['peak'] / 1024, 256, count_form))
    goals.append(goal('poll: decoding of a command among 1,000 or 10,000 over one among 100',
                      linear(figures), 1.05, ratio_form))
    goals.append(goal('GET of 8 MB: peak heap over bare', ratio(figures, 'get-8mb', 'peak'), 1.05,
                      ratio_form))
    return goals + [goal(text, fewer, 1, count_form, at_least=True)
                    for text, fewer in fewer_than_curlpp(figures).items()]


def timed_goals(times):
    """Of the medians; the quartiles of the same times stand below the goals."""
    text = 'upload of a 1 GiB file: throughput over bare, by '
    goals = [goal(text + name, times['bare']['upload-file'][median] /
                  times['library']['upload-file'][median], 0.98, '{:.3f}', at_least=True)
             for name, median in [('the clock', 1), ('processor time', 4)]]
    loading = (times['library']['load'][1] - times['bare']['load'][1]) / 1e6
    return goals + [goal('loading: ms of processor time beyond libcurl and jsoncpp', loading, 1.0,
                         '{:.2f}')]
