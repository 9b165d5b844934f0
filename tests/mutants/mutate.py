"""Changes the libraries in one place at a time and counts which changes the tests catch: what scripts/mutate runs.

All changes are compiled at once, each behind a switch that the environment variable ZYN_MUTANT sets, so that nothing is
built for each. Copies of the tests of the preset dev run with these libraries in place of their own, each row of
their data by itself, and what is not caught soon with all rows that reach it: the tests may change meanwhile.
"""

import argparse
import collections
import concurrent.futures
import dataclasses
import functools
import hashlib
import json
import os
import random
import re
import signal
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import mutants as found

ROOT = Path(__file__).resolve().parents[2]
DEV = ROOT / "build/dev"
PLACE = ROOT / "build/mutate"
TREE = PLACE / "tree"
COPIES = PLACE / "tests"
BROKEN = PLACE / "broken.txt" # the changes that do not compile
SEPARATOR = " ## "
EQUAL = Path(__file__).with_name("equal.txt")
LIBRARIES = ("utility/*.cpp", "recentcall/*.cpp", "platform/*.cpp")
GOAL = 90

# Tests that build or install the libraries themselves, count what they cost, or look at the files of the build.
OTHER_LIBRARIES = ("abi", "bad_input", "cost", "headers", "install", "intruder", "man", "packages", "platform_table",
                   "subproject", "units")

# How many rows meet a change one by one, before all others of each test do so in one process.
SINGLE_ROWS = 8

# The source that gets the switch.
SWITCH_HOME = "platform/aplog.cpp"
SWITCH_MAP = "abi/libzynplatform.map" # which exports it
PLACES = 65536
SWITCH = r"""
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
namespace {
// A byte for each place in the file of what is reached: mapped, so that no later limit on files or descriptors, and no
// other user's rights, keep anything from being noted.
std::atomic<char>* reachedPlaces()
{
    const char* const name = std::getenv("ZYN_MUTANTS_REACHED");
    const int before = errno;
    const int file = name ? ::open(name, O_RDWR | O_CLOEXEC) : -1;
    void* const place = file < 0 ? MAP_FAILED : ::mmap(nullptr, PLACES, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (file >= 0)
        ::close(file);
    errno = before;
    return place == MAP_FAILED ? nullptr : static_cast<std::atomic<char>*>(place);
}
} // namespace
extern "C" bool zynMutant(int number)
{
    static const char* const chosen = std::getenv("ZYN_MUTANT");
    static const int switched = chosen ? std::atoi(chosen) : 0;
    static std::atomic<char>* const reached = reachedPlaces();
    if (reached)
        reached[number] = 1;
    return number == switched;
}
"""


def say(text):
    print("mutate: " + text, file=sys.stderr, flush=True)


def place(mutant):
    """What names the change, and its place in the source, in one line."""
    fields = dataclasses.asdict(mutant)
    return json.dumps([fields[name] for name in ("file", "original", "changed", "edits")])


def listed(*patterns):
    return subprocess.run(["git", "ls-files", "-z", "--", *patterns], cwd=ROOT, check=True, capture_output=True,
                          text=True).stdout.split("\0")[:-1]


def candidates(files):
    """All mutants of some sources. Those of a source that has not changed are known from before."""
    lists = found.together(ROOT, files, DEV)
    with concurrent.futures.ProcessPoolExecutor() as pool:
        list(pool.map(look_for, lists))
    compiled = {file for together in lists for file in together}
    return [found.Mutant(**fields) for file in files if file in compiled
            for fields in json.loads(known_mutants(file).read_text())]


def known_mutants(file):
    contents = Path(found.__file__).read_bytes() + (ROOT / file).read_bytes()
    return PLACE / "found" / f"{file.replace('/', '-')}-{hashlib.sha256(contents).hexdigest()}.json"


def look_for(files):
    if not all(known_mutants(file).exists() for file in files):
        for file, mutants in zip(files, found.find(ROOT, files, DEV)):
            write(known_mutants(file), json.dumps([dataclasses.asdict(mutant) for mutant in mutants]).encode())


def write(path: Path, contents: bytes):
    """Writes a file that has changed, so that the others are not compiled again."""
    if not path.exists() or path.read_bytes() != contents:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(contents)


def write_tree(mutants):
    by_file = collections.defaultdict(list)
    for mutant in mutants:
        by_file[mutant.file].append(mutant)
    for file in listed("CMakeLists.txt", "abi/*.map", "cmake", "platform", "utility", "recentcall"):
        text = (ROOT / file).read_bytes()
        if file == SWITCH_MAP:
            text = text.replace(b"global:", b"global: zynMutant;", 1)
        if file.endswith(".cpp") and by_file[file]:
            text = found.mutated(text, file, by_file[file]).encode()
        if file == SWITCH_HOME:
            text += SWITCH.replace("PLACES", str(PLACES)).encode()
        write(TREE / file, text)


def build(mutants):
    """Compiles the mutants; gives those that compile."""
    libraries = PLACE / "build"
    configure = ["cmake", "-S", str(TREE), "-B", str(libraries), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                 "-DCMAKE_CXX_FLAGS=-w", "-DZYN_BUILD_PROGRAMS=OFF", "-DZYN_BUILD_TESTS=OFF", "-DZYN_INSTALL=OFF",
                 "-DZYN_BUILD_REFERENCE=OFF", "-DCMAKE_UNITY_BUILD=ON"]
    known = set(BROKEN.read_text().splitlines()) if BROKEN.exists() else set()
    mutants = [mutant for mutant in mutants if place(mutant) not in known]
    while True:
        write_tree(mutants)
        subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
        result = subprocess.run(["cmake", "--build", str(libraries), "--target", "zynphone", "--", "-k", "0"],
                                capture_output=True, text=True, check=False)
        if result.returncode == 0:
            return mutants
        places = {(match[1], int(match[2]))
                  for match in re.finditer(r"^(\S+?):(\d+):\d+: error", result.stdout, re.MULTILINE)}
        kept = [mutant for mutant in mutants
                if not any(file == mutant.file and mutant.line <= line <= mutant.last_line for file, line in places)]
        if len(kept) == len(mutants):
            sys.exit("mutate: the changed libraries do not compile:\n" + result.stdout[-4000:])
        say(f"{len(mutants) - len(kept)} changes do not compile")
        known |= set(map(place, mutants)) - set(map(place, kept))
        BROKEN.write_text("\n".join(sorted(known)))
        mutants = kept


class Test:
    """A test of the build, as ctest knows it, or some rows of it: functions of Qt Test, with a row of their data."""

    def __init__(self, entry, *rows):
        self.entry = entry
        self.rows = rows
        properties = {item["name"]: item["value"] for item in entry.get("properties", [])}
        self.name = " ".join([entry["name"], *rows[:1]])
        self.command = [copied(word) for word in entry.get("command", [])] + [*rows]
        self.folder = properties.get("WORKING_DIRECTORY", str(DEV))
        self.environment = dict(item.split("=", 1) for item in properties.get("ENVIRONMENT", []))
        self.is_alone = bool(properties.get("RESOURCE_LOCK"))
        self.program = Path((*self.command, *["/nowhere"] * 4)[3]) # behind private-tmp and its folders
        self.is_disabled = (bool(properties.get("DISABLED")) or entry["name"] in OTHER_LIBRARIES
                            or not self.program.exists())
        self.seconds = 0.0
        self.passed = False
        self.reached = set()
        self.tried = collections.Counter() # changes of each source
        self.caught = collections.Counter()
        self.failed_row = "" # when it last failed, as far as it is known

    def fails(self, limit, **environment):
        """Whether the test fails, or takes longer. It ends with its first failure."""
        with tempfile.TemporaryFile() as shown:
            process = subprocess.Popen(
                self.command, cwd=self.folder, stdin=subprocess.DEVNULL, stdout=shown, stderr=subprocess.DEVNULL,
                start_new_session=True,
                env=os.environ | self.environment | {"LD_LIBRARY_PATH": library_path()} | environment)
            end = time.monotonic() + limit
            try:
                while time.monotonic() < end:
                    try:
                        return process.wait(0.1) != 0
                    except subprocess.TimeoutExpired:
                        if b"\nFAIL!" in os.pread(shown.fileno(), 1 << 20, 0):
                            return True
                return True
            finally:
                self.failed_row = failed_row(os.pread(shown.fileno(), 1 << 20, 0).decode(errors="replace"))
                # Whatever the test has started goes with it.
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()

    def limit(self):
        return 10 + 5 * self.seconds

    def catches(self, mutant):
        """Whether the test fails with a change, fails again with more time, and then passes without it."""
        self.tried[mutant.file] += 1
        switch = {"ZYN_MUTANT": str(mutant.number)}
        is_caught = (self.fails(self.limit(), **switch) and self.fails(2 * self.limit(), **switch)
                     and not self.fails(2 * self.limit()))
        self.caught[mutant.file] += is_caught
        return is_caught

    def promise(self, mutant):
        """How long the test takes for each change that it is likely to catch in the same source."""
        return self.seconds * (self.tried[mutant.file] + 2) / (self.caught[mutant.file] + 0.5)

    def rehearse(self):
        """Runs the test on the unchanged libraries, and notes what it reaches, unless that is known."""
        known = PLACE / "reached" / (hashlib.sha256(self.name.encode()).hexdigest() + ".json")
        notes = known.with_suffix(".bytes")
        notes.parent.mkdir(parents=True, exist_ok=True)
        if not known.exists() or known.stat().st_mtime < newest(self):
            notes.write_bytes(bytes(PLACES)) # a byte for each
            notes.chmod(0o666)              # also for what runs as another user
            start = time.monotonic()
            passed = not self.fails(120, ZYN_MUTANTS_REACHED=str(notes))
            reached = [number for number, is_reached in enumerate(notes.read_bytes()) if is_reached]
            notes.unlink()
            known.write_text(json.dumps([passed, time.monotonic() - start, reached]))
        self.passed, self.seconds, reached = json.loads(known.read_text())
        self.reached = set(reached)


def failed_row(output):
    """The row that failed first, as a word of a test's command."""
    match = re.search(r"^FAIL!  : \w+::(\w+)\((.*?)\)(?= |$)", output, re.MULTILINE)
    return ":".join(filter(None, match.groups())) if match else ""


def copied(word):
    """The copy of a test's program; any other word of a command as it is."""
    program = Path(word)
    return str(COPIES / program.name) if program.parent == DEV / "tests" and program.name.startswith("tst_") else word


def copy_tests():
    """Copies the programs and what they read, which they find beside themselves."""
    shutil.copytree(ROOT / "tests/data", COPIES / "data", dirs_exist_ok=True)
    for program in (DEV / "tests").glob("tst_*"):
        if program.suffix == "" and program.is_file():
            # The old one may be running.
            shutil.copy2(program, COPIES / "copy")
            (COPIES / "copy").replace(COPIES / program.name)


def libraries():
    return sorted((PLACE / "build").rglob("libzyn*.so.1"))


@functools.cache
def library_path():
    return ":".join(str(path.parent) for path in libraries())


def newest(test):
    """When what a test runs last changed."""
    return max(path.stat().st_mtime for path in [test.program, *libraries(), *(DEV / "bin").iterdir(),
                                                   *(COPIES / "data").iterdir()])


def all_tests(pattern):
    """The tests of that name, those of Qt Test row by row."""
    shown = subprocess.run(["ctest", "--preset", "dev", "--show-only=json-v1", "-R", pattern], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout
    tests = []
    for entry in json.loads(shown)["tests"]:
        test = Test(entry)
        if test.is_disabled:
            continue
        if test.program.parent != COPIES or test.program.name == "tst_qml":
            tests.append(test)
            continue
        with tempfile.TemporaryDirectory() as scratch: # a test that only lists its rows leaves its folders behind
            lines = subprocess.run([str(test.program), "-datatags"], check=True, capture_output=True, text=True,
                                   env=os.environ | {"TMPDIR": scratch}).stdout.splitlines()
        for _, function, *row in (line.split(" ", 2) for line in lines):
            tests.append(Test(entry, ":".join([function, *row])))
    return tests


def equal_changes():
    """The changes that alter no behaviour; where one has the name of others, also what stands before its place."""
    rows = (line.split(SEPARATOR) for line in EQUAL.read_text().splitlines() if not line.startswith("#"))
    return {(*row[:4], row[4] if len(row) > 5 else "") for row in rows}


def is_equal(mutant, equal):
    before = (ROOT / mutant.file).read_bytes()[:mutant.edits[0][0]].decode()
    return any(row[:4] == mutant.key and before.endswith(row[4]) for row in equal)


def judge(mutant, tests):
    """The name of a test that catches the change; none when there is no such test."""
    left = [test for test in tests if mutant.number in test.reached]
    for _ in range(min(SINGLE_ROWS, len(left))):
        test = min(left, key=lambda test: test.promise(mutant))
        left.remove(test)
        if test.catches(mutant):
            return test.name
    together = collections.defaultdict(list)
    for test in left:
        together[test.entry["name"]].append(test)
    for rows in sorted(together.values(), key=lambda rows: sum(row.seconds for row in rows)):
        whole = Test(rows[0].entry, *(row for test in rows for row in test.rows))
        whole.seconds = sum(row.seconds for row in rows)
        if not whole.fails(whole.limit(), ZYN_MUTANT=str(mutant.number)):
            continue
        failed = [test for test in rows if test.rows == (whole.failed_row,)]
        for test in [*failed, whole]:
            if test.catches(mutant):
                return test.name
    return None


class State:
    """What was found of each change, kept in a file, so that a run which was ended goes on where it was."""

    def __init__(self, path, again):
        self.path = path
        self.known = {}
        if path and Path(path).exists():
            rows = map(json.loads, Path(path).read_text().splitlines())
            self.known = {row["place"]: row["test"] for row in rows if row["test"] or not again}

    def judge(self, mutant, tests):
        if place(mutant) not in self.known:
            test = self.known[place(mutant)] = judge(mutant, tests)
            if self.path:
                with open(self.path, "a", encoding="utf-8") as file:
                    file.write(json.dumps({"place": place(mutant), "test": test}) + "\n")
        return self.known[place(mutant)]


def table(mutants, kind):
    rows = collections.defaultdict(collections.Counter)
    for mutant in mutants:
        for row in (kind(mutant), "all"):
            rows[row]["made"] += 1
            rows[row][mutant.fate] += 1
    print(f"{'':24} {'made':>6} {'caught':>7} {'equal':>6} {'missed':>7} {'unreached':>10} {'share':>7}")
    for name, row in sorted(rows.items(), key=lambda item: (item[0] == "all", item[0])):
        print(f"{name:24} {row['made']:6} {row['caught']:7} {row['equal']:6} {row['missed']:7} {row['unreached']:10} "
              f"{share(row):6.1f}%")


def share(row):
    altering = row["made"] - row["equal"]
    return 100 * row["caught"] / altering if altering else 100.0


def arguments():
    parser = argparse.ArgumentParser(prog="scripts/mutate", description=__doc__)
    parser.add_argument("count", nargs="?", type=int, default=500, help="how many changes are tried (500)")
    parser.add_argument("files", nargs="*", help="only these sources of the libraries")
    parser.add_argument("--seed", type=int, help="where the choice begins (random)")
    parser.add_argument("--only", type=int, metavar="NUMBER", help="run all tests on one change, and name what fails")
    parser.add_argument("--tests", default=".", metavar="PATTERN", help="run only these tests, as ctest -R names them")
    parser.add_argument("--list", action="store_true", help="only list the changes that would be tried")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="how many tests run at once")
    parser.add_argument("--state", metavar="FILE", help="keep what is found in a file, and try nothing that is in it")
    parser.add_argument("--again", action="store_true", help="but try again what was not caught")
    parser.add_argument("--json", metavar="FILE", help="write the result of each change to a file")
    options = parser.parse_args()
    if options.again and not options.state:
        parser.error("--again needs the --state of an earlier run")
    return options


def main():
    options = arguments()
    seed = options.seed if options.seed is not None else random.SystemRandom().randrange(1_000_000)
    files = options.files or listed(*LIBRARIES)
    say(f"seed {seed}; looking for changes in {len(files)} sources")
    pool = candidates(files)
    if not pool:
        sys.exit("mutate: nothing to change there")
    random.Random(seed).shuffle(pool)
    # Some do not compile.
    chosen = pool[:options.count * 3 // 2]
    for number, mutant in enumerate(chosen, 1):
        mutant.number = number
    if options.list:
        for mutant in chosen[:options.count]:
            print(f"{mutant.number}\t{mutant.file}:{mutant.line}\t{mutant.operator}\t"
                  f"{mutant.original} -> {mutant.changed}")
        return 0
    say(f"{len(pool)} changes; building with {len(chosen)}")
    chosen = build(chosen)[:options.count]

    copy_tests()
    tests = all_tests(options.tests)
    jobs = 1 if any(test.is_alone for test in tests) else options.jobs
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        list(pool.map(Test.rehearse, tests))
        left_out = [test.name for test in tests if not test.passed]
        tests = [test for test in tests if test.passed and test.reached]
        say(f"{len(tests)} tests reach the libraries, and take {sum(test.seconds for test in tests):.0f} s; "
            f"these fail with them, and are left out: {' '.join(left_out)}")
        if options.only:
            [mutant] = [mutant for mutant in chosen if mutant.number == options.only]
            print(f"{mutant.file}:{mutant.line}: {mutant.original} -> {mutant.changed}")
            for test in tests:
                if mutant.number in test.reached:
                    fate = "fails" if test.fails(test.limit(), ZYN_MUTANT=str(mutant.number)) else "passes"
                    print(f"  {fate}  {test.name}", flush=True)
            return 0
        equal = equal_changes()
        tried = [mutant for mutant in chosen if not is_equal(mutant, equal)]
        done = 0
        state = State(options.state, options.again)
        results = {pool.submit(state.judge, mutant, tests): mutant for mutant in tried}
        for result in concurrent.futures.as_completed(results):
            mutant = results[result]
            mutant.test = result.result()
            done += 1
            if mutant.test is None:
                say(f"missed  {mutant.file}:{mutant.line}: {mutant.original} -> {mutant.changed}  ({mutant.number})")
            if done % 25 == 0:
                say(f"{done} of {len(tried)}")
    reached = set().union(*(test.reached for test in tests))
    for mutant in chosen:
        mutant.fate = ("equal" if is_equal(mutant, equal) else "caught" if mutant.test
                       else "missed" if mutant.number in reached else "unreached")
    if options.json:
        Path(options.json).write_text(json.dumps(
            [{"number": mutant.number, "file": mutant.file, "line": mutant.line, "function": mutant.function,
              "operator": mutant.operator, "original": mutant.original, "changed": mutant.changed,
              "fate": mutant.fate, "test": getattr(mutant, "test", None)} for mutant in chosen], indent=1))

    for mutant in sorted(chosen, key=lambda mutant: (mutant.file, mutant.line)):
        if mutant.fate in ("missed", "unreached"):
            print(f"{mutant.fate}  {mutant.file}:{mutant.line} {mutant.function}: "
                  f"{mutant.original} -> {mutant.changed}  ({mutant.number})")
    print()
    table(chosen, lambda mutant: mutant.operator)
    print()
    table(chosen, lambda mutant: mutant.file.rsplit("/", 1)[0])
    row = collections.Counter(mutant.fate for mutant in chosen) + collections.Counter(made=len(chosen))
    print(f"\nmutate: {share(row):.1f} % of the changes that alter behaviour were caught; the goal is {GOAL} %")
    print(f"mutate: one of them: scripts/mutate {options.count} {' '.join(options.files)} --seed {seed} --only NUMBER")
    return 0 if share(row) >= GOAL else 1


if __name__ == "__main__":
    sys.exit(main())
