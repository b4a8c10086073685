#!/usr/bin/env python3
"""Draws the cost of an entry against the number of entries, as SVG.

Standard input: {"workload": {"entries": instructions for each entry}} as JSON.
"""
import json
import math
import sys

WIDTH, HEIGHT = 760, 420
LEFT, RIGHT, TOP, BOTTOM = 60, 150, 40, 45  # margins
LABEL = 14                                   # height of a line of text

curves = {name: sorted((int(n), cost) for n, cost in points.items())
          for name, points in json.load(sys.stdin).items()}
entries = [n for n, _ in next(iter(curves.values()))]
top = math.ceil(max(cost for points in curves.values() for _, cost in points) / 1000) * 1000


def x(n):
    first, last = math.log10(entries[0]), math.log10(entries[-1])
    return LEFT + (math.log10(n) - first) / (last - first) * (WIDTH - LEFT - RIGHT)


def y(cost):
    return HEIGHT - BOTTOM - cost / top * (HEIGHT - TOP - BOTTOM)


def text(at_x, at_y, content, anchor="middle", more=""):
    return f'<text x="{at_x:.1f}" y="{at_y:.1f}" text-anchor="{anchor}"{more}>{content}</text>'


svg = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
       'font-family="sans-serif" font-size="11">',
       f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>',
       text(LEFT, 20, "Instructions of the plug-in and libc for each entry, by entries in one walk",
            "start", ' font-size="13"')]
for cost in range(0, top + 1, 1000):
    svg.append(f'<path d="M{LEFT} {y(cost):.1f}H{WIDTH - RIGHT}" stroke="#ddd"/>')
    svg.append(text(LEFT - 6, y(cost) + 4, f"{cost:,}", "end"))
for n in entries:
    svg.append(text(x(n), HEIGHT - BOTTOM + 18, f"{n:,}"))
svg.append(text((LEFT + WIDTH - RIGHT) / 2, HEIGHT - 8, "entries"))

# Labels stand at the end of their curve, pushed apart where they would overlap.
label_y = HEIGHT
for i, (name, points) in enumerate(sorted(curves.items(), key=lambda curve: curve[1][-1][1])):
    colour = f"hsl({i * 360 // len(curves)},70%,40%)"
    path = " ".join(f"{x(n):.1f},{y(cost):.1f}" for n, cost in points)
    svg.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.5"/>')
    label_y = min(y(points[-1][1]) + 4, label_y - LABEL)
    svg.append(text(WIDTH - RIGHT + 6, label_y, name, "start", f' fill="{colour}"'))
svg.append("</svg>")
print("\n".join(svg))
