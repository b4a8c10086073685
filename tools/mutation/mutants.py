"""Makes the mutants of C++ sources: each is one small edit, of one place.

Sources are taken apart into tokens, not parsed; whoever builds the mutants
leaves out those that do not compile.
"""
import collections
import re
import typing

TOKEN = re.compile(
    r"""(?P<skipped>//[^\n]*|/\*.*?\*/|\#\s*(?:include|pragma)[^\n]*)
      | (?P<string>"(?:\\.|[^"\\\n])*")
      | (?P<char>'(?:\\.|[^'\\\n])*')
      | (?P<number>\d[0-9A-Fa-fxX]*[uU]?)
      | (?P<word>[A-Za-z_]\w*)
      | (?P<op><<|>>|->|\+\+|--|==|!=|<=|>=|&&|\|\||\+=|-=|\|=|&=|::|\.\.\.|[^\sA-Za-z_0-9])
    """, re.VERBOSE | re.DOTALL)
OPERATORS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"],
    ">=": [">", "<"], "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["+"],
    "/": ["*"], "++": ["--"], "--": ["++"], "+=": ["-=", "="], "-=": ["+=", "="],
    "|=": ["&=", "="], "&=": ["|=", "="], "|": ["&"], "&": ["|"], "<<": [">>"], ">>": ["<<"],
    "!": [""], "~": [""], "?": ["== 0 ?"],
}
# Part of a type as well; the formatter sets blanks around them where they calculate.
AMBIGUOUS = {"*", "&", "<", ">", "-"}
CLOSERS = {"(": ")", "{": "}", "[": "]"}
# A parameter: "const sr_val_t &value".
DECLARATION = re.compile(r"^(const |static |struct )*[\w:]+(<.*>)? [*&]*(const )?\w+$")
ASSERTED = {"AAA_NC_FIELD", "AAA_NC_RECORD"}  # offsets and sizes, at compile time
COMMUTATIVE = {"strcmp", "memcmp"}


Token = collections.namedtuple("Token", "kind text start end")


class Mutant(typing.NamedTuple):
    file: str   # below the root
    line: int   # from 1
    kind: str   # what sort of edit
    start: int  # the part of the file that is replaced
    end: int
    text: str   # what stands there instead

    def applied(self, source):
        return source[:self.start] + self.text + source[self.end:]

    def lines(self, source):
        """The lines that change, before and after, each as one line of text."""
        first = source.rfind("\n", 0, self.start) + 1
        last = source.find("\n", self.end)
        after = source[first:self.start] + self.text + source[self.end:last]
        return " ".join(source[first:last].split()), " ".join(after.split())


def siblings(sources):
    """For each field of a record, those of the same type; for each enumerator, the next one."""
    others = collections.defaultdict(set)

    def link(names):
        for name, other in zip(names, names[1:] + names[:1]):
            others[name].add(other)
    for source in sources:
        plain = re.sub(r"//[^\n]*", "", source)
        for body in re.findall(r"\bstruct \w+[^;{]*\{(.*?)\n\};", plain, re.DOTALL):
            by_type = collections.defaultdict(list)
            for kind, name in re.findall(
                    r"^ +((?:const )?[\w:]+[ *&]+)(\w+)(?:\[\w+\])?(?: = [^;]*)?(?:\{\})?;",
                    body, re.MULTILINE):
                by_type[kind].append(name)
            for names in by_type.values():
                link(names)
        for body in re.findall(r"\benum\b[^{;]*\{(.*?)\}", plain, re.DOTALL):
            link(re.findall(r"(?:^|,)\s*(\w+)", body))
    return others


class Generator:
    def __init__(self, file, source, others):
        self.file, self.source, self.others = file, source, others
        self.tokens = [Token(found.lastgroup, found.group(), *found.span())
                       for found in TOKEN.finditer(source) if found.lastgroup != "skipped"]
        self.pairs = {}  # index of the closing bracket for that of each opening one
        opened = []
        for i, token in enumerate(self.tokens):
            if token.text in CLOSERS:
                opened.append(i)
            elif opened and token.text == CLOSERS[self.tokens[opened[-1]].text]:
                self.pairs[opened.pop()] = i
        self.made = {}

    def add(self, kind, start, end, text):
        if self.source[start:end] != text:
            line = self.source.count("\n", 0, start) + 1
            self.made.setdefault((start, end, text),
                                 Mutant(self.file, line, kind, start, end, text))

    def all(self):
        for i, token in enumerate(self.tokens):
            for kind, text in getattr(self, "of_" + token.kind)(i, token):
                self.add(kind, token.start, token.end, text)
        for opening, closing in self.pairs.items():
            self.swaps(opening, closing)
        for i in range(1, len(self.tokens)):
            self.statement(i)
        return sorted(self.made.values(), key=lambda m: (m.start, m.end, m.text))

    def of_op(self, i, token):
        around = self.source[token.start - 1] + self.source[token.end]
        if token.text not in AMBIGUOUS or around == "  ":
            for text in OPERATORS.get(token.text, []):
                yield "operator", text
        # `Record record{};` would not be zero.
        if token.text == "{" and self.pairs.get(i) == i + 1 and self.tokens[i + 2].text == ";":
            if self.tokens[i - 1].kind == "word":
                self.add("initialiser", token.start, self.tokens[i + 1].end, "")

    def of_number(self, i, token):
        digits = token.text.rstrip("uU")
        for other in {int(digits, 0) + 1, max(int(digits, 0) - 1, 0)}:
            yield "constant", str(other) + token.text[len(digits):]

    def of_char(self, i, token):
        yield "constant", "'~'"

    def of_string(self, i, token):
        inner = token.text[1:-1]
        yield "text", f'"{inner[:-1]}"' if inner and inner[-2:-1] != "\\" else '"~"'
        letter = re.search(r"(?<![%\\])[A-Za-z]", inner)
        if letter:
            at = letter.start()
            yield "text", f'"{inner[:at]}{inner[at].swapcase()}{inner[at + 1:]}"'

    def of_word(self, i, token):
        if token.text in ("true", "false"):
            yield "constant", "false" if token.text == "true" else "true"
        elif token.text == "if" and i + 1 in self.pairs:
            for text in ("(true)", "(false)"):
                self.add("condition", self.tokens[i + 1].start,
                         self.tokens[self.pairs[i + 1]].end, text)
        is_field = self.tokens[i - 1].text in (".", "->")
        is_constant = re.match(r"k[A-Z]|[A-Z]+_", token.text) and self.tokens[i + 1].text != "="
        if is_field or is_constant:
            for other in self.others.get(token.text, ()):
                yield "field", other

    def swaps(self, opening, closing):
        """Neighbours in a list, where both stand on one line. Rows of a table have no order."""
        before = self.tokens[opening - 1]
        if (self.tokens[opening].text == "[" or before.text in ASSERTED | COMMUTATIVE
                or self.source[:before.end].endswith("#define " + before.text)):
            return
        items, first, i = [], opening + 1, opening + 1
        while i <= closing:
            if i == closing or self.tokens[i].text == ",":
                if i > first:
                    items.append((self.tokens[first].start, self.tokens[i - 1].end))
                first = i + 1
            i = self.pairs.get(i, i) + 1
        for (a, b), (c, d) in zip(items, items[1:]):
            one, between, other = self.source[a:b], self.source[b:c], self.source[c:d]
            are_rows = self.tokens[opening].text == "{" and one[-1] == other[-1] and one[-1] in ")}"
            if not (re.search("[\n;=]", one + between + other) or are_rows
                    or DECLARATION.match(one) or DECLARATION.match(other)):
                self.add("swap", a, d, other + between + one)

    def statement(self, i):
        """The statement that starts at token `i`: taken away, or another result returned."""
        token = self.tokens[i]
        if self.tokens[i - 1].text not in ("{", "}", ";", ":", ")", "else"):
            return
        end = i
        while end < len(self.tokens) and self.tokens[end].text not in (";", "}", ")", "{"):
            end = self.pairs.get(end, end) + 1
        if end >= len(self.tokens) or self.tokens[end].text != ";":
            return
        last = self.tokens[end].start
        if token.text == "return":
            if self.tokens[i + 1].text not in (";", "0", "nullptr"):
                self.add("result", self.tokens[i + 1].start, last, "{}")
        elif token.text in ("break", "continue") or self.is_expression(i, end):
            self.add("statement", token.start, last, "")

    def is_expression(self, i, end):
        """A call or an assignment, and neither declaration nor assertion."""
        kinds = [token.kind for token in self.tokens[i:end]]
        for at, token in enumerate(self.tokens[i:end]):
            if token.text in ("(", "=", "|=", "+=", "++", "--"):
                return True
            if token.text in ASSERTED | {"*", "&", "<", "{"} or kinds[at:at + 2] == ["word"] * 2:
                return False
        return False


def mutants(files):
    """The mutants of `files`, a map from name to source."""
    others = siblings(files.values())
    return [mutant for file, source in files.items()
            for mutant in Generator(file, source, others).all()]
