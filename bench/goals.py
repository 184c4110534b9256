"""What the figures are compared with, and what they have to reach."""

from measure import TITLES

# By hand, the same upload goes through the same temporary file, and is sent from memory in the
# tables of peers.
BY_HAND = {'upload-1kb': 'contract', 'upload-1mb': 'contract'}
POLLS = ['1', '100', '1000', '10000']


def by_hand(figures, subject):
    if subject.startswith('decode-'):
        return figures['bare'][subject.replace('decode', 'parse')]
    return figures[BY_HAND.get(subject, 'bare')][subject]


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


def counted_goals(figures):
    """Those that need no clock, for one kind of machine."""
    ratio_form, count_form = '{:.3f}', '{:.0f}'
    goals = [goal('GET, small reply: instructions over bare', ratio(figures, 'get'), 1.02, ratio_form),
             goal('GET, small reply: allocations beyond bare', difference(figures, 'get'), 12, count_form)]
    for name, text in [('upload-1kb', '1 KB'), ('upload-1mb', '1 MB')]:
        goals.append(goal(f'upload of {text}: instructions over by hand through the file',
                          ratio(figures, name), 1.10, ratio_form))
    goals.append(goal('upload of a 1 GiB file: peak heap in KiB',
                      figures['library']['upload-file']['peak'] / 1024, 256, count_form))
    for number in POLLS:
        goals.append(goal(f'{TITLES["poll-" + number]}: decoding over one parse',
                          ratio(figures, 'decode-' + number), 4.0, '{:.2f}'))
    goals.append(goal('poll: decoding of a command among 1,000 or 10,000 over one among 100',
                      linear(figures), 1.05, ratio_form))
    goals.append(goal('GET of 8 MB: peak heap over bare', ratio(figures, 'get-8mb', 'peak'), 1.05,
                      ratio_form))
    for name in ['get', 'get-8mb', 'upload-1kb', 'upload-1mb', 'upload-file']:
        fewer = (figures['curlpp'][name]['allocations'] -
                 figures['library'][name]['allocations'])
        goals.append(goal(f'{TITLES[name]}: allocations fewer than curlpp', fewer, 1, count_form,
                          at_least=True))
    return goals


def timed_goals(figures):
    """Of the least times, since other work on the machine only ever adds to them."""
    throughput, times = figures['throughput'], figures['times']
    text = 'upload of a 1 GiB file: throughput over bare, by '
    goals = [goal(text + name, throughput['bare']['upload-file'][least] /
                  throughput['library']['upload-file'][least], 0.98, '{:.3f}', at_least=True)
             for name, least in [('the clock', 3), ('processor time', 4)]]
    loading = (times['library']['load'][3] - times['bare']['load'][3]) / 1e6
    return goals + [goal('loading: ms of processor time beyond libcurl and jsoncpp', loading, 1.0,
                         '{:.2f}')]
