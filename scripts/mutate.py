"""What scripts/mutate does, which see. The changes are made by rules over the tokens of the formatted sources."""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import queue
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = "src/schema_populator"
WORK = ROOT / "build/mutate"
EQUIVALENTS = ROOT / "scripts/mutate.equivalents"
# The same suite of the contract runs against the loaded library too; that would kill nothing more.
PROGRAMS = ["schema_populator_test", "contract_linked", "loaded_library"]
TIME_LIMIT = 60  # seconds for a test program, which takes about three
LIMITS = {resource.RLIMIT_AS: 4 << 30, resource.RLIMIT_FSIZE: 64 << 20, resource.RLIMIT_CORE: 0}

# A change: what is put in place of source[start:end].
Mutant = collections.namedtuple("Mutant", "kind file start end new")
Token = collections.namedtuple("Token", "text start end")

TOKEN = re.compile(
    r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])*\'|[A-Za-z_]\w*|\d\w*|->|\+\+|--|&&|\|\||<<|>>|[=!<>+-]=|::|\.\.\.|[^\s\\]'
)
NOT_CODE = re.compile(
    r'("(?:\\.|[^"\\])*")|//[^\n]*|^#(?:include|ifndef|endif|pragma|undef|define \w+$)[^\n]*|^using [^\n]*', re.M
)
COMPARISONS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
CONSTANTS = [
    ["TevReturnOk", "TevReturnFailure", "TevReturnNotFound"],
    ["TevReturnInvalidArgument", "TevReturnNoMemory", "TevReturnNotStarted"],
    ["LogError", "LogWarning", "LogRefused", "LogNotice"],
    ["TraceDebug", "TraceEntry", "TraceExit"],
    ["DalMoTypeString", "DalMoTypeVoid"],
    ["DalOamSpiMrMomVersion", "DalOamSpiMrMomRelease", "DalOamSpiMrMomCorrection"],
    ["Schema", "Common"],
    ["AF_INET", "AF_INET6"],
    ["true", "false"],
]
NEXT_CONSTANT = {name: names[(i + 1) % len(names)] for names in CONSTANTS for i, name in enumerate(names)}
BEFORE_BLOCK = {")", "{", "}", ";", "else", "try", "do", "const", "noexcept"}
BEGIN_OF_BLOCK = {"struct", "class", "namespace", "enum", "extern"}
BRACKETS = {"(": ")", "[": "]", "{": "}"}
NAME = re.compile(r"(?!__)[A-Za-z_][\w:.>-]*")
# Declarations, and what a function cannot do without.
NO_STATEMENT = re.compile(
    r"(?:const |unsigned )*[\w:]+(?:<[^()]*>)?(?:\s*[*&]+\s*(?:const )?|\s+)\w+\s*[;={(\[]"
    r"|(?:return|using|static|const|constexpr) "
)


class Source:
    """A file's text and the tokens of its code."""

    def __init__(self, path):
        self.path = path
        self.text = (ROOT / path).read_text()
        code = NOT_CODE.sub(lambda found: found[1] or " " * len(found[0]), self.text)
        self.tokens = [Token(found[0], found.start(), found.end()) for found in TOKEN.finditer(code)]
        self.partner = self.pairs()
        self.statements = []  # lists of the neighbours (first token, last token) within one block
        self.functions = []  # (start, end, name)
        self.walk()

    def pairs(self):
        """The index of the closing bracket for that of each opening one."""
        partner, open_ones = {}, []
        for i, token in enumerate(self.tokens):
            if token.text in BRACKETS:
                open_ones.append(i)
            elif token.text in BRACKETS.values():
                partner[open_ones.pop()] = i
        return partner

    def span(self, first, last):
        return self.text[self.tokens[first].start : self.tokens[last].end]

    def walk(self):
        """Finds functions and statements: a brace after a name, a comma or an operator begins a value, no block."""
        i = begin = 0
        blocks = []  # those around: where each ends, and its statements when it is in a function
        while i < len(self.tokens):
            text = self.tokens[i].text
            in_function = bool(blocks) and blocks[-1][1] is not None
            if blocks and i == blocks[-1][0]:
                self.statements.append(blocks.pop()[1] or [])
                begin = i + 1
            elif text == "{" and self.is_block(begin, i):
                name = re.search(r"([\w~]+)\(", self.span(begin, i))
                if name and not in_function:
                    self.functions.append((self.tokens[begin].start, self.tokens[self.partner[i]].end, name[1]))
                blocks.append((self.partner[i], [] if name or in_function else None))
                begin = i + 1
            elif text in BRACKETS:
                i = self.partner[i]
            elif text == ";":
                if in_function and i > begin:
                    blocks[-1][1].append((begin, i))
                begin = i + 1
            i += 1

    def is_block(self, begin, brace):
        before = self.tokens[brace - 1].text if brace else ";"
        return before in BEFORE_BLOCK or self.tokens[begin].text in BEGIN_OF_BLOCK

    def function_at(self, position):
        return next((name for start, end, name in self.functions if start <= position < end), "")

    def mutant(self, kind, first, last, new):
        return Mutant(kind, self.path, self.tokens[first].start, self.tokens[last].end, new)

    def mutants(self):
        yield from self.of_tokens()
        yield from self.of_conditions()
        yield from self.of_arguments()
        yield from self.of_statements()

    def of_tokens(self):
        for i, (text, start, end) in enumerate(self.tokens):
            spaced = self.text[start - 1 : start].isspace() and self.text[end : end + 1].isspace()
            if text in COMPARISONS and spaced:
                yield self.mutant("comparison", i, i, COMPARISONS[text])
            elif text in {"&&", "||"}:
                yield self.mutant("logic", i, i, "||" if text == "&&" else "&&")
            elif text == "!":
                yield self.mutant("negation", i, i, "")
            elif text in {"++", "--"}:
                yield self.mutant("arithmetic", i, i, "--" if text == "++" else "++")
            elif text == "+" and spaced and self.tokens[i + 1].text.isdigit():
                yield self.mutant("arithmetic", i, i, "-")
            elif text.isdigit():
                yield self.mutant("constant", i, i, str(int(text) + 1))
            elif text in NEXT_CONSTANT and self.tokens[i + 1].text != "=":
                yield self.mutant("constant", i, i, NEXT_CONSTANT[text])
            elif text == '""':
                yield self.mutant("text", i, i, '"x"')
            elif text[0] in "\"'":
                units = re.findall(r"\\.|%l?[a-z]|.", text[1:-1])
                if " " not in text:
                    yield self.mutant("text", i, i, text[0] + "".join(["X", *units[1:]]) + text[0])
                if len(units) > 1:
                    yield self.mutant("text", i, i, text[0] + "".join(units[:-1]) + text[0])
            elif text == "?" and self.tokens[i - 2].text not in COMPARISONS:
                yield from self.of_choice(i)

    def of_choice(self, question):
        colon = end = question
        while self.tokens[colon].text != ":":
            colon = self.partner.get(colon, colon) + 1
        while self.tokens[end].text not in {";", ",", ")"}:
            end = self.partner.get(end, end) + 1
        chosen, other = self.span(question + 1, colon - 1), self.span(colon + 1, end - 1)
        yield self.mutant("order", question + 1, end - 1, f"{other} : {chosen}")

    def of_conditions(self):
        for i, token in enumerate(self.tokens):
            if token.text in {"if", "while"} and self.tokens[i + 2].text not in {"true", "false"}:
                last = self.partner[i + 1]
                condition = self.span(i + 2, last - 1)
                yield self.mutant("branch", i + 2, last - 1, "false")
                # The others are negated by the change of their one operator.
                if "&&" in condition or "||" in condition or not re.search("[=!<>]=|!| [<>] ", condition):
                    yield self.mutant("negation", i + 2, last - 1, f"!({condition})")

    def of_arguments(self):
        """Neighbours of one sort, names or texts, change places."""
        for first, last in self.partner.items():
            starts = [first + 1]
            i = first + 1
            while i < last:
                if self.tokens[i].text == ",":
                    starts.append(i + 1)
                i = self.partner.get(i, i) + 1
            spans = [(a, b - 2) for a, b in zip(starts, starts[1:] + [last + 1])]
            for one, two in zip(spans, spans[1:]):
                a, b = self.span(*one), self.span(*two)
                names = all(NAME.fullmatch(text) and text not in NEXT_CONSTANT for text in (a, b))
                if (names or a[:1] == b[:1] == '"') and a != b:
                    yield self.mutant("order", one[0], two[1], f"{b}, {a}")

    def of_statements(self):
        for block in self.statements:
            plain = [s for s in block if not NO_STATEMENT.match(self.span(*s))]
            for statement in plain:
                yield self.mutant("statement", *statement, ";")
            for one, two in zip(plain, plain[1:]):
                a, b = self.span(*one), self.span(*two)
                if one[1] + 1 == two[0] and a != b:
                    between = self.text[self.tokens[one[1]].end : self.tokens[two[0]].start]
                    yield self.mutant("order", one[0], two[1], b + between + a)


def shown(source, mutant):
    """The change as its list knows it: file and function, the lines before, the lines after."""
    text = source.text
    start = text.rfind("\n", 0, mutant.start) + 1
    end = text.find("\n", mutant.end)
    before = text[start:end]
    after = text[start : mutant.start] + mutant.new + text[mutant.end : end]
    function = source.function_at(mutant.start)
    return f"{mutant.file} {function}".strip(), "- " + " ".join(before.split()), "+ " + " ".join(after.split())


def names_of(sources, mutants):
    """What `shown` gives for each; those that look the same are numbered."""
    counts = collections.Counter()
    for mutant in mutants:
        name = shown(sources[mutant.file], mutant)
        counts[name] += 1
        yield name if counts[name] == 1 else (f"{name[0]} #{counts[name]}", *name[1:])


def read_equivalents():
    """The changes that change nothing, each with its reason."""
    blocks = [block.split("\n") for block in EQUIVALENTS.read_text().strip().split("\n\n")]
    for block in blocks:
        if [line[:2] for line in block[1:]] != ["- ", "+ ", "= "]:
            sys.exit(f"error: {EQUIVALENTS}: not a place, -, +, = : {block}")
    return {tuple(block[:3]) for block in blocks}


class Worker:
    """A copy of the tree with its build."""

    def __init__(self, number):
        self.folder = WORK / str(number)
        self.tree = self.folder / "tree"
        self.build = self.folder / "build"
        self.temporary = self.folder / "tmp"
        shutil.rmtree(self.temporary, ignore_errors=True)
        self.temporary.mkdir(parents=True)

    def copy_tree(self):
        command = ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
        for name in subprocess.check_output(command, cwd=ROOT, text=True).split("\0"):
            if (ROOT / name).is_file():
                self.put(name, (ROOT / name).read_bytes())
                (self.tree / name).chmod((ROOT / name).stat().st_mode)

    def put(self, name, content):
        """A file that is right keeps its time, so that nothing is built anew."""
        path = self.tree / name
        path.parent.mkdir(parents=True, exist_ok=True)
        if not path.exists() or path.read_bytes() != content:
            path.write_bytes(content)

    def configure(self):
        # The assertions see an index out of range.
        options = ["-DCMAKE_BUILD_TYPE=", "-DCMAKE_CXX_FLAGS=-O0 -D_GLIBCXX_ASSERTIONS", "-DTEV_WARNINGS_AS_ERRORS=OFF"]
        return self.run(["cmake", "-G", "Ninja", "-S", str(self.tree), "-B", str(self.build), *options], "configure")

    def run(self, command, log, **options):
        with open(self.folder / (log + ".log"), "wb") as output:
            return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=output, stderr=output, **options).returncode

    def built(self, program):
        return self.run(["cmake", "--build", str(self.build), "--target", program], "build") == 0

    def passed(self, program):
        def limit():
            for which, amount in LIMITS.items():
                resource.setrlimit(which, (amount, amount))

        command = [str(self.build / "bin" / program), "--gtest_fail_fast"]
        environment = {**os.environ, "TMPDIR": str(self.temporary)}
        try:
            return self.run(command, "test", preexec_fn=limit, env=environment, timeout=TIME_LIMIT) == 0
        except subprocess.TimeoutExpired:
            return False

    def failed_test(self):
        """The test that failed, or the one under way when the program ended: those after a failure are passed over."""
        log = (self.folder / "test.log").read_text(errors="replace")
        found = re.findall(r"^\[  FAILED  \] (\S+)", log, re.M)[:1] or re.findall(r"^\[ RUN      \] (\S+)", log, re.M)
        return found[-1] if found else "none"

    def verdict(self, mutant, source):
        """Says "uncompiled", "survived", or what killed it."""
        content = source.text[: mutant.start] + mutant.new + source.text[mutant.end :]
        self.put(mutant.file, content.encode())
        # What includes a header is built anew; the contract's tests include none.
        programs = [PROGRAMS[1], PROGRAMS[0], PROGRAMS[2]] if mutant.file.endswith(".h") else PROGRAMS
        try:
            for program in programs:
                if not self.built(program):
                    return "uncompiled"
                if not self.passed(program):
                    return f"{program}: {self.failed_test()}"
            return "survived"
        finally:
            self.put(mutant.file, source.text.encode())


def prepare(worker):
    worker.copy_tree()
    if worker.configure() or not all(worker.built(program) for program in PROGRAMS):
        return f"the copy in {worker.folder} cannot be built"
    failing = [program for program in PROGRAMS if not worker.passed(program)]
    return f"without any change, {failing[0]} fails: {worker.failed_test()}" if failing else None


def run_all(sources, changes):
    """The verdicts, in order; prints what survives at once."""
    workers = [Worker(number) for number in range(len(os.sched_getaffinity(0)))]
    pool = concurrent.futures.ThreadPoolExecutor(len(workers))
    for problem in filter(None, pool.map(prepare, workers)):
        sys.exit("error: " + problem)
    waiting = queue.SimpleQueue()
    for item in enumerate(changes):
        waiting.put(item)
    verdicts = [None] * len(changes)
    started = time.monotonic()

    def work(worker):
        while True:
            try:
                i, (mutant, name) = waiting.get_nowait()
            except queue.Empty:
                return
            verdicts[i] = worker.verdict(mutant, sources[mutant.file])
            if verdicts[i] == "survived":
                print("\n" + "\n".join(name), flush=True)
            done = len(changes) - verdicts.count(None)
            seconds = time.monotonic() - started
            print(f"\r{done} of {len(changes)}, {seconds:.0f} s ", end="", file=sys.stderr, flush=True)

    list(pool.map(work, workers))
    print(file=sys.stderr)
    return verdicts


def report(results):
    """Prints the table; returns the score."""
    lines = ["\t".join([verdict, mutant.kind, *name]) for mutant, name, verdict in results]
    (WORK / "verdicts.tsv").write_text("\n".join(lines) + "\n")
    row = "{:12} {:>8} {:>8} {:>12} {:>8} {:>9}".format
    print("\n" + row("kind", "changes", "killed", "uncompiled", "equal", "survived"))
    for kind in [*sorted({mutant.kind for mutant, _, _ in results}), "all"]:
        chosen = [verdict for mutant, _, verdict in results if kind in (mutant.kind, "all")]
        uncompiled, equal, survived = (chosen.count(word) for word in ("uncompiled", "equivalent", "survived"))
        killed = len(chosen) - uncompiled - equal - survived
        print(row(kind, len(chosen), killed, uncompiled, equal, survived))
    score = 100 * killed / max(killed + survived, 1)
    print(f"\nscore: {score:.1f} % of {killed + survived}")
    return score


def main():
    parser = argparse.ArgumentParser(prog="scripts/mutate")
    parser.add_argument("--list", action="store_true", help="print the changes and make none")
    parser.add_argument("--sample", type=int, metavar="N", help="make N of the changes, spread evenly")
    parser.add_argument("files", nargs="*", metavar="FILE", help="a source of the component; all when there is none")
    arguments = parser.parse_args()
    paths = sorted(str(path.relative_to(ROOT)) for path in (ROOT / SOURCES).glob("*.[hc]*"))
    for path in set(arguments.files) - set(paths):
        parser.error(f"no source of the component: {path}")
    sources = {path: Source(path) for path in arguments.files or paths}
    mutants = [mutant for source in sources.values() for mutant in dict.fromkeys(source.mutants())]
    changes = list(zip(mutants, names_of(sources, mutants)))
    if arguments.sample:
        changes = [changes[i * len(changes) // arguments.sample] for i in range(min(arguments.sample, len(changes)))]
    if arguments.list:
        for mutant, name in changes:
            print(mutant.kind, *name, sep="\n", end="\n\n")
        return
    equivalents = read_equivalents()
    made = [change for change in changes if change[1] not in equivalents]
    verdicts = dict(zip(made, run_all(sources, made)))
    score = report([(*change, verdicts.get(change, "equivalent")) for change in changes])
    stale = equivalents - {name for _, name in changes}
    if stale and not arguments.sample and not arguments.files:
        print("\nin the list and no change any more:", *("\n".join(name) for name in sorted(stale)), sep="\n")
        sys.exit(1)
    sys.exit(score < 95)


if __name__ == "__main__":
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    main()
