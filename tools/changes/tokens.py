"""Splits C++ text into tokens: just enough to find expressions, calls and statements in code that compiles."""

import re

PATTERN = re.compile(
    r"""(?P<space>\s+)
      | (?P<comment>//(?:[^\\\n]|\\.)*|/\*.*?\*/)
      | (?P<directive>\#(?:[^\\\n]|\\.)*)
      | (?P<raw>(?:u8|[uUL])?R"(?P<mark>[^()\\ ]{0,16})\(.*?\)(?P=mark)")
      | (?P<string>(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*"|(?:u8|[uUL])?'(?:[^'\\\n]|\\.)*')
      | (?P<number>(?:0[xXbB][0-9a-fA-F']+|(?:\d[\d']*\.?[\d']*|\.\d[\d']*)(?:[eE][+-]?\d+)?)\w*)
      | (?P<word>[A-Za-z_]\w*)
      | (?P<op><<=|>>=|<=>|->\*|\.\.\.|::|->|\.\*|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)""",
    re.X | re.S | re.M)

CLOSERS = {"(": ")", "[": "]", "{": "}"}


class Token:
    def __init__(self, kind, text, start, line):
        self.kind, self.text, self.start, self.end, self.line = kind, text, start, start + len(text), line


class Source:
    """A file as tokens. match[i] is the partner of the bracket at i."""

    def __init__(self, text):
        self.text = text
        self.tokens = []
        line = 1
        for found in PATTERN.finditer(text):
            kind = "string" if found.lastgroup in ("raw", "mark") or found.group("raw") else found.lastgroup
            if kind not in ("space", "comment", "directive"):
                self.tokens.append(Token(kind, found.group(), found.start(), line))
            line += found.group().count("\n")
        self.words = [token.text if token.kind != "string" else '""' for token in self.tokens]
        self.match = {}
        waiting = []
        for i, word in enumerate(self.words):
            if word in CLOSERS:
                waiting.append(i)
            elif word in (")", "]", "}"):
                if not waiting or CLOSERS[self.words[waiting[-1]]] != word:
                    raise ValueError(f"line {self.tokens[i].line}: bracket without a partner")
                self.match[i] = waiting.pop()
                self.match[self.match[i]] = i
        if waiting:
            raise ValueError(f"line {self.tokens[waiting[-1]].line}: bracket without a partner")

    def spaced(self, i):
        """Whether space stands on both sides: a comparison has it, the bracket of a template has not."""
        token = self.tokens[i]
        return self.text[token.start - 1:token.start].isspace() and self.text[token.end:token.end + 1].isspace()

    def slice(self, first, last):
        return self.text[self.tokens[first].start:self.tokens[last].end]

    def plain(self, first, last):
        """The text of some tokens in one line, without comments."""
        pieces = []
        for i in range(first, last + 1):
            if i > first and self.tokens[i].start > self.tokens[i - 1].end:
                pieces.append(" ")
            pieces.append(self.tokens[i].text)
        return "".join(pieces)

    def angle_open(self, i):
        """The bracket that opens the template arguments closed at i, or None."""
        depth = 0
        while i >= 0 and self.words[i] not in (";", "{", "}"):
            if self.words[i] in (")", "]"):
                i = self.match[i]
            elif self.words[i] in (">", ">>") and not self.spaced(i):
                depth += len(self.words[i])
            elif self.words[i] == "<" and not self.spaced(i):
                depth -= 1
                if depth <= 0:
                    return i
            i -= 1
        return None

    def angle_close(self, i):
        depth = 0
        while i < len(self.words) and self.words[i] not in (";", "{", "}"):
            if self.words[i] in ("(", "["):
                i = self.match[i]
            elif self.words[i] == "<":
                depth += 1
            elif self.words[i] in (">", ">>"):
                depth -= len(self.words[i])
                if depth <= 0:
                    return i
            i += 1
        return None
