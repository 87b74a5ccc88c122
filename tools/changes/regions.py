"""Tells which tokens of a file are code that runs: bodies of functions, and initial values of variables."""

import re

# What stands in the brackets of these is text, a name or a check of the compiler.
QUIET_CALLS = re.compile(r"^(Q_\w+|QT_\w+|SIGNAL|SLOT|QStringLiteral|QLatin1String|tr|translate|static_assert|sizeof|alignas"
                         r"|decltype|noexcept)$")
# A statement with one of these writes a log.
LOGGING = {"qDebug", "qInfo", "qWarning", "qCritical", "RyMessageLog", "ryDeveloperMessage"}

FUNCTION, MEMBER, INITIAL = "function", "member", "initial"


class Regions:
    """kind[i] says what token i belongs to: FUNCTION, MEMBER (the initial value of one), INITIAL (the same of a variable
    outside of classes and functions) or None for all that is not to be changed. bodies are the brackets that open functions.
    """

    def __init__(self, source):
        self.source = source
        self.kind = [None] * len(source.words)
        self.bodies = []
        self._scope(0, len(source.words), INITIAL)
        self._silence()

    def _mark(self, first, last, kind):
        self.kind[first:last] = [kind] * (last - first)

    def _scope(self, first, end, values):
        while first < end:
            first = self._declaration(first, end, values)

    def _declaration(self, first, end, values):
        """Marks one declaration of a namespace or class; returns where the next one begins."""
        words, match = self.source.words, self.source.match
        i = first
        value = brackets = None
        heads = []
        while i < end:
            word = words[i]
            if word == "template" and i + 1 < end and words[i + 1] == "<":
                i = (self.source.angle_close(i + 1) or i) + 1
                continue
            if word == ";":
                if value is not None and words[value - 1] not in (")", "const", "override", "noexcept"):
                    self._mark(value + 1, i, values)
                return i + 1
            if word in ("(", "["):
                if word == "(" and brackets is None and not QUIET_CALLS.match(words[i - 1]):
                    brackets = i
                i = match[i] + 1
                continue
            if word == "=" and words[i - 1] != "operator" and value is None:
                value = i
            if word == "{":
                close = match[i]
                if value is not None or "enum" in heads:
                    i = close + 1
                    continue
                if "namespace" in heads or words[first] == "extern":
                    self._scope(i + 1, close, values)
                    return close + 1
                if brackets is None and {"class", "struct", "union"} & set(heads):
                    self._scope(i + 1, close, MEMBER)
                    i = close + 1
                    continue
                if brackets is None:
                    self._mark(i, close, values)
                    i = close + 1
                    continue
                if close + 1 < end and words[close + 1] in (",", "{"):  # a member made by braces
                    i = close + 1
                    continue
                self._mark(match[brackets] + 1, close + 1, FUNCTION)
                if not {"constexpr", "consteval"} & set(heads):
                    self.bodies.append(i)
                return close + 1
            heads.append(word)
            i += 1
        return end

    def _silence(self):
        words, match = self.source.words, self.source.match
        for i, word in enumerate(words):
            if i + 1 < len(words) and words[i + 1] == "(" and QUIET_CALLS.match(word):
                self._mark(i, match[i + 1] + 1, None)
            elif word == "case" and ":" in words[i:]:
                self._mark(i, words.index(":", i), None)
            elif word == "constexpr" and i > 0 and words[i - 1] == "if":
                self._mark(i, match[i + 1] + 1, None)
            elif word in LOGGING:
                first = last = i
                while first > 0 and words[first - 1] not in (";", "{", "}"):
                    first -= 1
                while last < len(words) and words[last] not in (";", "{", "}"):
                    last += 1
                self._mark(first, last, None)
