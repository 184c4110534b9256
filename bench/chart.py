"""Draws docs/performance.svg: what each client costs over bare."""

import math

from measure import PEERS, TITLES

PATH = 'docs/performance.svg'
SUBJECTS = ['get', 'get-8mb', 'upload-1kb', 'upload-1mb', 'upload-file', 'poll-100', 'poll-10000']
CLIENTS = [client for client in PEERS if client != 'bare']
LANE, GAP, HEAD, FOOT = 14, 16, 88, 58
SUBJECT_AT, CLIENT_AT, PLOTS, PLOT, MARGIN = 24, 232, (252, 472, 692), 190, 16
MOST = 16  # a longer line ends there, with an arrow
STYLE = """
text { font: 12px system-ui, "Segoe UI", Helvetica, Arial, sans-serif; fill: #57606a }
.title { font-size: 17px; font-weight: 600; fill: #1f2328 }
.strong { font-weight: 600; fill: #1f2328 }
.small { font-size: 10.5px }
.page { fill: #ffffff; stroke: #d0d7de }
.band { fill: #f6f8fa }
.grid { stroke: #d8dee4 }
.one { stroke: #57606a; stroke-width: 1.5 }
.mark-peer { stroke: #9aa4af; fill: #9aa4af }
.mark-library { stroke: #0969da; fill: #0969da }
.of-library { font-weight: 600; fill: #0969da }
@media (prefers-color-scheme: dark) {
  text { fill: #9198a1 }
  .title, .strong { fill: #f0f6fc }
  .page { fill: #0d1117; stroke: #3d444d }
  .band { fill: #151b23 }
  .grid { stroke: #2a313c }
  .one { stroke: #9198a1 }
  .mark-peer { stroke: #656c76; fill: #656c76 }
  .mark-library { stroke: #4493f8; fill: #4493f8 }
  .of-library { fill: #4493f8 }
}
"""


def element(name, text='', **attributes):
    written = ''.join(f' {key.rstrip("_").replace("_", "-")}="{value}"'
                      for key, value in attributes.items())
    return f'<{name}{written}>{text}</{name}>' if text else f'<{name}{written}/>'


def row_top(row):
    return HEAD + row * (len(CLIENTS) * LANE + GAP)


def written(value):
    return f'{value:.2f}' if value <= MOST else f'{value:.0f} →'


class Panel:
    """One figure of every client; each step of the axis is twice the one before."""

    def __init__(self, left, title, values):
        self.left, self.title, self.values = left, title, values
        self.low = math.floor(math.log2(min(min(row) for row in values)))
        self.high = math.ceil(math.log2(min(max(max(row) for row in values), MOST)))
        self.labelled = 2 if self.high - self.low > 5 else 1

    def x(self, value):
        # The value is written behind the longest line.
        share = (math.log2(min(value, MOST)) - self.low) / (self.high - self.low)
        return self.left + share * (PLOT - 34)

    def axis(self, bottom):
        lines = [element('text', self.title, x=self.left, y=HEAD - 30, class_='strong')]
        for power in range(self.low, self.high + 1):
            x = f'{self.x(2 ** power):.1f}'
            lines += [element('line', x1=x, y1=HEAD - 6, x2=x, y2=bottom,
                              class_='one' if power == 0 else 'grid')]
            if power % self.labelled == 0:
                lines.append(element('text', f'{2 ** power:g}×', x=x, y=HEAD - 12, text_anchor='middle',
                              class_='small strong' if power == 0 else 'small'))
        return lines

    def marks(self):
        lines = []
        for row, values in enumerate(self.values):
            for lane, (client, value) in enumerate(zip(CLIENTS, values)):
                y = row_top(row) + GAP / 2 + lane * LANE + LANE / 2
                x, kind = self.x(value), 'library' if client == 'library' else 'peer'
                lines += [element('line', x1=f'{self.x(1):.1f}', y1=y, x2=f'{x:.1f}', y2=y,
                                  stroke_width=3, class_='mark-' + kind),
                          element('circle', cx=f'{x:.1f}', cy=y, r=4, class_='mark-' + kind),
                          element('text', written(value), x=f'{max(x, self.x(1)) + 8:.1f}',
                                  y=y + 4, class_='small of-' + kind)]
        return lines


def names(width):
    lines = []
    for row, subject in enumerate(SUBJECTS):
        top = row_top(row)
        if row % 2 == 0:
            lines.append(element('rect', x=1, y=top, width=width - 2,
                                 height=len(CLIENTS) * LANE + GAP, class_='band'))
        title = TITLES[subject]
        lines.append(element('text', title[0].upper() + title[1:], x=SUBJECT_AT,
                             y=top + GAP / 2 + 11, class_='strong'))
        for lane, client in enumerate(CLIENTS):
            lines.append(element('text', client, x=CLIENT_AT, text_anchor='end',
                                 y=top + GAP / 2 + lane * LANE + 11,
                                 class_='small of-' + client))
    return lines


def write(figures):
    def over_bare(found, field):
        return [[found[client][name][field] / found['bare'][name][field] for client in CLIENTS]
                for name in SUBJECTS]

    width, bottom = PLOTS[-1] + PLOT + MARGIN, row_top(len(SUBJECTS))
    panels = [Panel(PLOTS[0], 'Instructions', over_bare(figures['amd64'], 'instructions')),
              Panel(PLOTS[1], 'Allocations', over_bare(figures['amd64'], 'allocations')),
              Panel(PLOTS[2], 'Median time', over_bare(figures['times'], 1))]
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {bottom + FOOT}" '
             f'width="{width}" height="{bottom + FOOT}" role="img">',
             element('title', 'Instructions, allocations and times over hand-written libcurl'),
             element('style', STYLE),
             element('rect', x=0.5, y=0.5, width=width - 1, height=bottom + FOOT - 1, rx=6,
                     class_='page'),
             element('text', 'What an exchange costs, in multiples of hand-written libcurl',
                     x=SUBJECT_AT, y=32, class_='title'), *names(width)]
    for panel in panels:
        lines += panel.axis(bottom) + panel.marks()
    notes = ['Left of the line at 1× is cheaper than hand-written libcurl, right of it dearer. amd64, '
             f'{figures["date"]}; times are noisy, counts are not.',
             'As its contract has it, the library sends content from a temporary file, and turns each '
             'command back to text and parses it again.']
    lines += [element('text', note, x=SUBJECT_AT, y=bottom + 24 + 18 * i)
              for i, note in enumerate(notes)]
    lines.append('</svg>')
    with open(PATH, 'w', encoding='utf-8') as file:
        file.write('\n'.join(lines) + '\n')
