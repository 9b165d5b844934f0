"""The places of the libraries' sources that can be changed, and how: found in the syntax trees of libclang."""

import collections
import dataclasses
import json
import re
import shlex
from pathlib import Path

from clang.cindex import CursorKind, Index, TokenKind, TypeKind

# What an operator becomes.
REPLACED = {
    "comparison": {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="},
    "logic": {"&&": "||", "||": "&&"},
    "arithmetic": {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "&": "|", "|": "&", "<<": ">>", ">>": "<<"},
}
OPERATORS = ("comparison", "logic", "arithmetic", "constant", "condition", "statement", "arguments")

FUNCTIONS = (
    CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
    CursorKind.CONVERSION_FUNCTION, CursorKind.FUNCTION_TEMPLATE)
INTEGERS = (
    TypeKind.INT, TypeKind.UINT, TypeKind.LONG, TypeKind.ULONG, TypeKind.LONGLONG, TypeKind.ULONGLONG, TypeKind.SHORT,
    TypeKind.USHORT, TypeKind.CHAR_S, TypeKind.CHAR_U, TypeKind.SCHAR, TypeKind.UCHAR)


@dataclasses.dataclass
class Edit:
    """Source bytes from start to end become `before` + themselves + `after`, where inner edits still apply."""

    start: int
    end: int
    before: str
    after: str


@dataclasses.dataclass
class Mutant:
    """One change; `number` is its switch at run time."""

    file: str
    line: int
    last_line: int
    function: str
    operator: str
    original: str
    changed: str
    edits: list  # of (start, end, form), where form has {on} for the switch and {text} for what stands there
    number: int = 0

    @property
    def key(self):
        """What names the change independently of its line."""
        return (self.file, self.function, self.original, self.changed)


def compile_arguments(build: Path):
    """With which file each source of a build is compiled, and how, without what only gcc knows."""
    arguments = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        words = shlex.split(entry["command"])
        words = words[next(i for i, word in enumerate(words) if word.startswith("-")):]
        kept = []
        skip = False
        for word, following in zip(words, words[1:] + [""]):
            if skip:
                skip = False
            elif word in ("-o", "-c") or (word == "-include" and following.endswith(".hxx")):
                skip = True
            elif word not in ("-Winvalid-pch", "-fno-gnu-unique", "-Werror"):
                kept.append(word)
        for source in sources_of(Path(entry["file"])):
            arguments[source] = (entry["file"], kept + ["-w"])
    return arguments


def sources_of(path: Path):
    """What is compiled with a file of a build: itself, or the sources that CMake has put together in it."""
    if path.parent.name != "Unity" or not path.exists():
        return [str(path)]
    return re.findall(r'^#include "(.*\.cpp)"', path.read_text(), re.MULTILINE)


class Finder:
    """Finds the mutants of one source."""

    def __init__(self, root: Path, file: str, unit):
        self.file = file
        self.text = (root / file).read_bytes()
        self.path = str(root / file)
        self.mutants = []
        self.visit(unit.cursor, "", None)

    def source(self, cursor):
        return self.text[cursor.extent.start.offset:cursor.extent.end.offset].decode()

    def is_plain(self, cursor):
        """Whether the cursor is written here, outside of macros, as far as its bytes tell."""
        start, end = cursor.extent.start, cursor.extent.end
        return (start.file and start.file.name == self.path and end.file and end.file.name == self.path
                and start.offset < end.offset
                and next(cursor.get_tokens(), None) is not None)

    def add(self, cursor, function, operator, original, changed, edits):
        self.mutants.append(Mutant(
            self.file, cursor.extent.start.line, cursor.extent.end.line, function, operator,
            " ".join(original.split()), " ".join(changed.split()), edits))

    def replace(self, cursor, function, operator, changed):
        """Another expression in the place of one."""
        original = self.source(cursor)
        form = "({on} ? (" + escaped(changed) + ") : ({text}))"
        self.add(cursor, function, operator, original, changed,
                 [(cursor.extent.start.offset, cursor.extent.end.offset, form)])

    def visit(self, cursor, function, parent):
        for child in cursor.get_children():
            location = child.extent.start
            if parent is None and (not location.file or location.file.name != self.path):
                continue
            inside = function
            if child.kind in FUNCTIONS:
                inside = child.semantic_parent.spelling + "::" + child.spelling \
                    if child.kind != CursorKind.FUNCTION_DECL else child.spelling
            elif function and self.is_plain(child):
                self.look_at(child, inside, cursor)
            # What the compiler computes has no switch.
            if child.kind == CursorKind.STATIC_ASSERT or "constexpr" in self.beginning(child):
                continue
            self.visit(child, inside, child)

    def beginning(self, cursor):
        if cursor.kind not in FUNCTIONS + (CursorKind.VAR_DECL, CursorKind.DECL_STMT):
            return ()
        return [token.spelling for token, _ in zip(cursor.get_tokens(), range(6))]

    def look_at(self, cursor, function, parent):
        kind = cursor.kind
        children = list(cursor.get_children())
        if kind in (CursorKind.BINARY_OPERATOR, CursorKind.CALL_EXPR) and len(children) >= 2:
            self.look_at_operator(cursor, function, children)
        if kind == CursorKind.INTEGER_LITERAL:
            self.replace(cursor, function, "constant", self.source(cursor) + " + 1")
        if kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            self.replace(cursor, function, "constant", "false" if self.source(cursor) == "true" else "true")
        if kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR) and children:
            condition = children[0]
            if condition.kind.is_expression() and self.is_plain(condition):
                original = self.source(condition)
                self.add(condition, function, "condition", original, "!(" + original + ")", [(
                    condition.extent.start.offset, condition.extent.end.offset, "({on} != bool({text}))")])
        if kind == CursorKind.CALL_EXPR:
            self.look_at_arguments(cursor, function)
        if parent.kind == CursorKind.COMPOUND_STMT and (
                kind in (CursorKind.CALL_EXPR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR, CursorKind.UNARY_OPERATOR)
                or kind == CursorKind.BINARY_OPERATOR):
            end = self.text.find(b";", cursor.extent.end.offset) + 1
            if self.text[cursor.extent.end.offset:end].strip() == b";":
                self.add(cursor, function, "statement", self.source(cursor), "nothing",
                         [(cursor.extent.start.offset, end, "if (!{on}) {{ {text} }}")])

    def look_at_operator(self, cursor, function, children):
        left, right = children[0], children[-1]
        between = [token.spelling for token in cursor.get_tokens()
                   if left.extent.end.offset <= token.extent.start.offset < right.extent.start.offset
                   and token.kind == TokenKind.PUNCTUATION and token.spelling != "("]
        if cursor.kind == CursorKind.CALL_EXPR and not cursor.spelling.startswith("operator"):
            return
        for operator, replaced in REPLACED.items():
            if len(between) == 1 and between[0] in replaced:
                if operator == "arithmetic" and cursor.type.get_canonical().kind not in INTEGERS:
                    continue
                self.replace(cursor, function, operator,
                             f"{self.source(left)} {replaced[between[0]]} {self.source(right)}"
                             if self.is_plain(left) and self.is_plain(right) else "")
                if not self.mutants[-1].changed:
                    self.mutants.pop()

    def look_at_arguments(self, cursor, function):
        # The two sides of an operator are looked at above; those of a comparison may be swapped.
        if cursor.spelling.startswith("operator"):
            return
        arguments = [argument for argument in cursor.get_arguments() if argument and self.is_plain(argument)]
        for one, other in zip(arguments, arguments[1:]):
            texts = self.source(one), self.source(other)
            if one.type.get_canonical().spelling == other.type.get_canonical().spelling and texts[0] != texts[1]:
                edits = [(argument.extent.start.offset, argument.extent.end.offset,
                          "({on} ? (" + escaped(text) + ") : ({text}))")
                         for argument, text in ((one, texts[1]), (other, texts[0]))]
                self.add(cursor, function, "arguments", ", ".join(texts), ", ".join(reversed(texts)), edits)
                return


def escaped(text):
    return text.replace("{", "{{").replace("}", "}}")


def together(root: Path, files, build: Path):
    """Those of the sources that the build compiles, in lists of what it compiles together."""
    arguments = compile_arguments(build)
    lists = collections.defaultdict(list)
    for file in files:
        if str(root / file) in arguments:
            lists[arguments[str(root / file)][0]].append(file)
    return list(lists.values())


def find(root: Path, files, build: Path):
    """The mutants of sources that are compiled together, in a list for each."""
    name, arguments = compile_arguments(build)[str(root / files[0])]
    unit = Index.create().parse(name, args=arguments)
    return [Finder(root, file, unit).mutants for file in files]


def mutated(text: bytes, path: str, mutants):
    """A source in which each of the mutants has a switch."""
    edits = [(start, end, form, mutant.number) for mutant in mutants for start, end, form in mutant.edits]
    # Outer ones first; of two for the same text, the statement's is the outer one.
    edits.sort(key=lambda edit: (edit[0], -edit[1]))

    def render(start, end, inner):
        out, at = "", start
        while inner:
            first_start, first_end, form, number = inner[0]
            if first_end > end:
                raise ValueError("edits overlap")
            held = 1
            while held < len(inner) and inner[held][0] < first_end:
                held += 1
            out += text[at:first_start].decode()
            out += form.format(on=f"zynMutant({number})", text=render(first_start, first_end, inner[1:held]))
            at, inner = first_end, inner[held:]
        return out + text[at:end].decode()

    head = f'extern "C" bool zynMutant(int number);\n#line 1 "{path}"\n'
    return head + render(0, len(text), edits)
