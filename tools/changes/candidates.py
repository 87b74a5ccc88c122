"""Finds the places of a file where one change can be tried, and how each is written so that a switch turns it on.

A change that is not asked for must leave the code as it was; `inner` below is the text of before, in which other changes
may have been written already.
"""

import hashlib

from .regions import FUNCTION, INITIAL, Regions
from .tokens import Source

CONDITION, ARGUMENTS, CALL, CONSTANT = KINDS = ("condition", "arguments", "call", "constant")

TURNED = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&"}

BINDING = {"*": 13, "/": 13, "%": 13, "+": 12, "-": 12, "<<": 11, ">>": 11, "<=>": 10, "<": 9, "<=": 9, ">": 9, ">=": 9,
           "==": 8, "!=": 8, "&": 7, "^": 6, "|": 5, "&&": 4, "||": 3, "?": 2, ":": 2, "=": 2, "+=": 2, "-=": 2, "*=": 2,
           "/=": 2, "%=": 2, "&=": 2, "|=": 2, "^=": 2, ",": 1}
LOOSEST = 2.5  # of what a condition before "?" is made of

# Words that no operand reaches across.
STOPPERS = {"return", "case", "throw", "else", "do", "co_return"}
KEYWORDS = STOPPERS | {"if", "while", "for", "switch", "catch", "sizeof", "new", "delete", "operator", "void", "const", "auto",
                       "using", "typedef", "goto", "break", "continue", "default", "requires", "explicit"}
# The order of these arguments says nothing, or the compiler refuses any other.
SYMMETRIC = {"min", "max", "qMin", "qMax", "swap", "strcmp", "qstrcmp", "connect", "disconnect"}
# Without these a program is slower and nothing else.
INVISIBLE = {"reserve", "shrink_to_fit"}


class Candidate:
    """One change. first and last are tokens, write(number, inner) makes the text that holds both."""

    def __init__(self, source, kind, first, last, before, after, write, shown=None):
        shown = source.tokens[shown if shown is not None else first]
        self.kind, self.before, self.after, self.write = kind, before, after, write
        self.start, self.end = source.tokens[first].start, source.tokens[last].end
        self.line = shown.line
        self.first_line, self.last_line = source.tokens[first].line, source.tokens[last].line
        self.line_text = source.text.splitlines()[self.line - 1].strip()
        self.constexpr = None  # where a word stands that forbids the switch and can be "const" as well
        self.at_start = False  # whether the place is reached when the program starts, long before what reads the value
        self.path = None
        self.rank = ""


def replaced(changed):
    return lambda number, inner: f"(ryChange({number}) ? ({changed}) : ({inner}))"


class Finder:
    def __init__(self, text):
        self.source = Source(text)
        self.words, self.match = self.source.words, self.source.match
        self.kind = Regions(self.source).kind

    def find(self):
        found = []
        for i in range(len(self.words)):
            if self.kind[i] == FUNCTION:
                found += self._condition(i) + self._operator(i) + self._arguments(i) + self._call(i)
            if self.kind[i]:
                found += self._constant(i)
        return found

    def _unary(self, i):
        if self.words[i] not in ("*", "&", "+", "-"):
            return False
        before = self.words[i - 1]
        return before in BINDING or before in STOPPERS or before in ("(", "[", "{", ";", "!", "}")

    def _binding(self, i):
        word = self.words[i]
        if word in ("<", ">", ">>") and not self.source.spaced(i) or self._unary(i):
            return None
        return BINDING.get(word)

    def _left(self, i, binding):
        """The first token of the operand left of the operator at i."""
        i -= 1
        while i > 0:
            before = self.words[i]
            if before in (")", "]"):
                i = self.match[i]
            elif before == ">" and not self.source.spaced(i):
                i = self.source.angle_open(i) or i
            elif before in ("(", "[", "{", "}", ";") or before in STOPPERS or (self._binding(i) or 99) < binding:
                return i + 1
            i -= 1
        return i

    def _right(self, i, binding):
        """The last token of the operand right of the operator at i."""
        i += 1
        while i < len(self.words):
            word = self.words[i]
            if word in ("(", "[", "{"):
                i = self.match[i]
            elif word == "<" and not self.source.spaced(i):
                i = self.source.angle_close(i) or i
            elif word in (")", "]", "}", ";") or (self._binding(i) or 99) <= binding:
                return i - 1
            i += 1
        return i - 1

    def _condition(self, i):
        """if, while and ? with a condition that says the opposite."""
        if self.words[i] == "?":
            first, last, opening = self._left(i, LOOSEST), i - 1, i
        elif self.words[i] in ("if", "while") and self.words[i + 1] == "(":
            opening = i
            first, last = i + 2, self.match[i + 1] - 1
        else:
            return []
        level = self._level(first, last)
        semicolons = [at for at in level if self.words[at] == ";"]
        if semicolons:
            first = semicolons[-1] + 1
        assigned = [at for at in self._level(first, last) if self.words[at] == "="]
        text = self.source.plain(first, last)
        if assigned and (semicolons or self.words[i] != "if"):
            return []
        if assigned:
            name = self.words[assigned[0] - 1]
            return [Candidate(self.source, CONDITION, first, last, text, f"{text}; !{name}",
                              lambda number, inner: f"{inner}; ryChange({number}) != static_cast<bool>({name})", opening)]
        return [Candidate(self.source, CONDITION, first, last, text, f"!({text})",
                          lambda number, inner: f"(ryChange({number}) != static_cast<bool>({inner}))", opening)]

    def _level(self, first, last):
        """The tokens from first to last that no bracket among them holds."""
        i, found = first, []
        while i <= last:
            found.append(i)
            i = self.match[i] + 1 if self.words[i] in ("(", "[", "{") else i + 1
        return found

    def _operator(self, i):
        word = self.words[i]
        if word not in TURNED or not self.source.spaced(i) or self.words[i - 1] == "operator":
            return []
        first, last = self._left(i, BINDING[word]), self._right(i, BINDING[word])
        if first >= i or last <= i:
            return []
        left, right = self.source.plain(first, i - 1), self.source.plain(i + 1, last)
        loose = word in ("&&", "||")
        changed = f"({left}) {TURNED[word]} ({right})" if loose else f"{left} {TURNED[word]} {right}"
        return [Candidate(self.source, CONDITION, first, last, f"{left} {word} {right}", changed, replaced(changed), i)]

    def _callee(self, i):
        """The first token of the expression that is called by the name at i."""
        while i > 1 and self.words[i - 1] in (".", "->", "::"):
            if self.words[i - 1] == "::" and self.source.tokens[i - 2].kind != "word" and self.words[i - 2] != ">":
                return i - 1
            i -= 2
            while self.words[i] in (")", "]") or self.words[i] == ">" and not self.source.spaced(i):
                opening = self.source.angle_open(i) if self.words[i] == ">" else self.match[i]
                if not opening:
                    return i
                if self.words[opening] == "(" and not self._ends_name(opening - 1):
                    i = opening
                    break
                i = opening - 1
        return i

    def _ends_name(self, i):
        return self.source.tokens[i].kind == "word" and self.words[i] not in KEYWORDS or self.words[i] in (")", "]") or \
            self.words[i] == ">" and not self.source.spaced(i)

    def _arguments(self, i):
        """Calls with two neighbouring arguments exchanged."""
        if self.source.tokens[i].kind != "word" or self.words[i] in KEYWORDS | SYMMETRIC or self.words[i + 1:i + 2] != ["("]:
            return []
        first, last = self._callee(i), self.match[i + 1]
        if self.words[first - 1] == "new":
            first -= 1
        elif self._ends_name(first - 1) and self.words[first - 1] not in (")", "]"):
            return []  # a variable with a value in brackets
        commas = [at for at in self._level(i + 2, last - 1) if self.words[at] == ","]
        edges = [i + 1] + commas + [last]
        arguments = [(a + 1, b - 1) for a, b in zip(edges, edges[1:])]
        found = []
        for one, other in zip(arguments, arguments[1:]):
            before, after = self.source.plain(*one), self.source.plain(*other)
            if not before or not after or before == after or not any(self.kind[one[0]:other[1] + 1]):
                continue
            head = self.source.plain(first, one[0] - 1) + (" " if one[0] - 1 in commas else "")
            tail = self.source.plain(other[1] + 1, last)
            if tail.startswith(","):
                tail = tail.replace(",", ", ", 1) if not tail.startswith(", ") else tail
            text = self.source.plain(first, last)
            changed = f"{head}{after}, {before}{tail}"
            found.append(Candidate(self.source, ARGUMENTS, first, last, text, changed, replaced(changed), i))
        return found

    def _call(self, i):
        """Statements that are a call and nothing else."""
        before = self.words[i - 1]
        starts = before in (";", "{", "}", "else", "do") or before == ":" and self._label(i - 1) or \
            before == ")" and self.words[self.match[i - 1] - 1] in ("if", "for", "while")
        if not starts or not (self.source.tokens[i].kind == "word" or self.words[i] == "(") or self.words[i] in KEYWORDS:
            return []
        at, called = i, None
        while True:
            word = self.words[at]
            if word == "(":
                called, at = at, self.match[at] + 1
            elif word == "[":
                called, at = None, self.match[at] + 1
            elif word == "<" and not self.source.spaced(at):
                at = (self.source.angle_close(at) or at) + 1
                if self.words[at] != "(":
                    return []
            elif word in (".", "->", "::"):
                called, at = None, at + 1
            elif self.source.tokens[at].kind == "word" and (at == i or self.words[at - 1] in (".", "->", "::")):
                at += 1
            else:
                break
        if self.words[at] != ";" or called is None or called == i or self.words[called - 1] in INVISIBLE:
            return []
        return [Candidate(self.source, CALL, i, at, self.source.plain(i, at), ";",
                          lambda number, inner: f"{{ if (!ryChange({number})) {{ {inner} }} }}")]

    def _label(self, i):
        """Whether the colon at i ends a label of a switch."""
        while i > 0 and self.words[i - 1] not in (";", "{", "}", "?"):
            i -= 1
        return self.words[i] in ("case", "default")

    def _constant(self, i):
        token = self.source.tokens[i]
        if token.text in ("true", "false"):
            changes = ["false" if token.text == "true" else "true"]
        elif token.kind == "number":
            changes = self._numbers(token.text)
        else:
            return []
        # One change for each number: which one depends on the text around it, not on the rest of the file.
        line = self.source.text.splitlines()[token.line - 1].strip()
        dice = int(hashlib.sha256(f"{line}|{self.words[i - 1]}".encode()).hexdigest(), 16)
        changed = changes[dice % len(changes)]
        found = Candidate(self.source, CONSTANT, i, i, token.text, changed, replaced(changed))
        found.constexpr = self._constexpr(i)
        found.at_start = self.kind[i] == INITIAL
        return [found]

    @staticmethod
    def _numbers(text):
        if text in ("0", "1"):
            return ["1" if text == "0" else "0"]
        if text.isdigit():
            value = int(text)
            return [str(value + 1), str(value - 1), str(2 * value)]
        try:
            zero = float(text.rstrip("fFlLuU").replace("'", "")) == 0
        except ValueError:
            zero = False
        return [f"{text} + 1"] if zero else [f"{text} + 1", f"{text} - 1", f"{text} * 2"]

    def _constexpr(self, i):
        """The word constexpr of the variable whose initial value holds token i."""
        while i > 0 and self.words[i] not in (";", "}"):
            i = self.match[i] if self.words[i] in (")", "]") else i
            if self.words[i] == "constexpr":
                return self.source.tokens[i].start
            i -= 1
        return None


def find_candidates(files):
    """All changes of {path: text}, in the order of files and lines. Each has a rank of its own text, so that neither its
    neighbours nor the name of its file say whether it is taken."""
    found = []
    for path in sorted(files):
        for candidate in sorted(Finder(files[path]).find(), key=lambda each: (each.start, each.end, each.kind)):
            candidate.path = path
            found.append(candidate)
    return found


def rank(candidates, seed):
    seen = {}
    for each in candidates:
        key = f"{each.kind}|{each.line_text}|{each.before}|{each.after}"
        seen[key] = seen.get(key, 0) + 1
        each.rank = hashlib.sha256(f"{seed}|{key}|{seen[key]}".encode()).hexdigest()
    return sorted(candidates, key=lambda each: each.rank)


def crosses(one, other):
    """Whether two changes cannot be written into one text: neither holds the other, and they touch."""
    if one.path != other.path or one.end <= other.start or other.end <= one.start:
        return False
    holds = one.start <= other.start and other.end <= one.end
    held = other.start <= one.start and one.end <= other.end
    return not holds and not held


def choose(ranked, count):
    """The first `count` of the ranked changes, as many of each kind as there are, and at most one a line."""
    taken, lines = [], set()
    queues = {kind: [each for each in ranked if each.kind == kind] for kind in KINDS}
    while len(taken) < count and any(queues.values()):
        for kind in KINDS:
            while queues[kind] and len(taken) < count:
                each = queues[kind].pop(0)
                if (each.path, each.line) in lines or any(crosses(each, other) for other in taken):
                    continue
                lines.add((each.path, each.line))
                taken.append(each)
                break
    return taken


def instrument(text, numbered, marker=None):
    """The text with all changes of {number: candidate} written into it, each behind its switch. Lines keep their numbers.
    Every function asks for the marker, which is the number of no change."""
    edits = {each.constexpr: ("constexpr", "const") for each in numbered.values() if each.constexpr is not None}
    if marker:
        source = Source(text)
        edits |= {source.tokens[i].start: ("{", f"{{ ryChange({marker});") for i in Regions(source).bodies}
    # Outer changes first; of two with one place the second is held by the first.
    ordered = sorted(numbered.items(), key=lambda item: (item[1].start, -item[1].end, item[0]))

    def write(start, end, changes):
        pieces, at = [], start
        while changes:
            (number, outer), changes = changes[0], changes[1:]
            held = [item for item in changes if item[1].start < outer.end]
            changes = changes[len(held):]
            pieces.append(plain(at, outer.start))
            pieces.append(outer.write(number, write(outer.start, outer.end, held)))
            at = outer.end
        pieces.append(plain(at, end))
        return "".join(pieces)

    def plain(start, end):
        piece = text[start:end]
        for at, (before, after) in sorted(edits.items(), reverse=True):
            if start <= at < end:
                piece = piece[:at - start] + after + piece[at - start + len(before):]
        return piece

    return write(0, len(text), ordered)
