#!/usr/bin/env python3
"""Prints what a report's page holds as plain lines: headings, tables, and the pictures in the units of their axes.

usage: report_outline.py PAGE.html
"""

import html.parser
import re
import sys


def cleaned(text):
    return " ".join(text.replace("\u00a0", " ").replace("\u2060", "").split())


class Node:
    def __init__(self, name, attributes):
        self.name, self.attributes, self.children = name, dict(attributes), []

    @property
    def classes(self):
        return self.attributes.get("class", "").split()

    def text(self):
        if "explanation" in self.classes:
            return " [explained]"
        return "".join(child if isinstance(child, str) else child.text() for child in self.children)

    def all(self, name, class_name=None):
        for child in self.children:
            if isinstance(child, str):
                continue
            if child.name == name and (class_name is None or class_name in child.classes):
                yield child
            yield from child.all(name, class_name)

    def first(self, name, class_name=None):
        return next(self.all(name, class_name), None)


class Tree(html.parser.HTMLParser):
    EMPTY = {"meta", "br", "path", "circle", "rect", "line"}

    def __init__(self):
        super().__init__()
        self.root = Node("page", [])
        self.open = [self.root]

    def handle_starttag(self, tag, attrs):
        node = Node(tag, attrs)
        self.open[-1].children.append(node)
        if tag not in self.EMPTY:
            self.open.append(node)

    def handle_startendtag(self, tag, attrs):
        self.open[-1].children.append(Node(tag, attrs))

    def handle_endtag(self, tag):
        if tag in self.EMPTY:
            return
        if self.open[-1].name != tag:
            raise ValueError(f"{self.getpos()}: </{tag}> ends <{self.open[-1].name}>")
        self.open.pop()

    def handle_data(self, data):
        self.open[-1].children.append(data)


def read_tree(path):
    tree = Tree()
    with open(path, encoding="utf-8") as file:
        tree.feed(file.read())
    tree.close()
    if len(tree.open) != 1:
        raise ValueError(f"<{tree.open[-1].name}> is not ended")
    return tree.root


class Frame:
    """Turns places of the frame into values, as exactly as the frame has them."""

    def __init__(self, picture):
        (self.x_low, self.x_high), (self.y_low, self.y_high) = [
            [float(word) for word in picture.attributes[name].split()[:2]] for name in ("data-x", "data-y")]

    def point(self, x, y):
        across = (self.x_high - self.x_low) / 6000
        down = (self.y_high - self.y_low) / 4000
        return f"({self.shown(self.x_low + x * across, across)}, {self.shown(self.y_high - y * down, down)})"

    @staticmethod
    def shown(value, step):
        return "0" if abs(value) < step else f"{value:.3g}"


def points(data, frame):
    """The pieces of a path, each as its points."""
    pieces, x, y = [], 0, 0
    for command, rest in re.findall(r"([Mlhv])([^Mlhv]*)", data):
        numbers = [int(number) for number in re.findall(r"-?\d+", rest)]
        if command == "M":
            x, y = numbers
            pieces.append([frame.point(x, y)])
        elif command == "l":
            for dx, dy in zip(numbers[::2], numbers[1::2]):
                x, y = x + dx, y + dy
                pieces[-1].append(frame.point(x, y))
        elif numbers[0] != 0:
            x, y = (x + numbers[0], y) if command == "h" else (x, y + numbers[0])
            pieces[-1].append(frame.point(x, y))
    return pieces


LINES = {"t": "typ", "n": "min", "x": "max", "s-t": "ramp typ", "s-n": "ramp min", "s-x": "ramp max", "r": "rail",
         "h": "threshold", "e-t": "level typ", "e-n": "level min", "e-x": "level max", "o-t": "dots typ",
         "o-n": "dots min", "o-x": "dots max"}


def picture_lines(figure):
    yield "picture: " + cleaned(figure.first("figcaption").text())
    picture = figure.first("svg")
    if picture is None:
        yield "  " + cleaned(figure.first("p").text())
        return
    if "plot" not in picture.classes:
        yield "  " + cleaned(picture.first("title").text())
        return
    frame = Frame(picture)
    for axis in "xy":
        label = cleaned(picture.first("text", "l" + axis).text())
        ticks = [text.text() for text in picture.first("g", "t" + axis).all("text")]
        yield f"  {label}: {' '.join(ticks)}"
    for path in picture.first("g", "d").all("path"):
        for piece in points(path.attributes["d"], frame):
            shown = piece if len(piece) <= 8 else piece[:3] + [f"and {len(piece) - 4} more"] + piece[-1:]
            yield f"  {LINES[path.attributes['class']]}: " + " ".join(shown)
    for label in list(picture.all("text", "lr")) + list(picture.all("text", "lh")):
        yield "  label: " + cleaned(label.text())
    for mark in picture.all("a", "mark"):
        at = mark.first("g").attributes["data-at"]
        yield f"  mark: {mark.attributes['href']} at {at}: {cleaned(mark.first('title').text())}"


def outline(node):
    for child in node.children:
        if isinstance(child, str) or child.name in ("head", "script", "footer", "nav"):
            continue
        if re.fullmatch(r"h[2-6]", child.name):
            yield f"{child.name} {cleaned(child.text())}"
        elif child.name == "figure":
            yield from picture_lines(child)
        elif child.name == "tr":
            cells = [cleaned(cell.text()) for cell in child.children if not isinstance(cell, str)]
            yield "| " + " | ".join(cells)
        elif child.name in ("p", "li", "dt", "dd", "caption", "summary", "pre"):
            if "legend" in child.classes:
                continue
            text = cleaned(child.text())
            if text:
                yield f"{child.name}: {text}"
        elif child.name != "h1":
            yield from outline(child)


if __name__ == "__main__":
    print("\n".join(outline(read_tree(sys.argv[1]))))
