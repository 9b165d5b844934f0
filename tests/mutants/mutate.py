"""Changes the libraries in one place at a time and counts which changes the tests catch: what scripts/mutate runs.

All changes are compiled at once, each behind a switch that the environment variable ZYN_MUTANT sets, so that nothing is
built for each. The tests of the preset dev run with these libraries in place of their own.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import random
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

import mutants as found

ROOT = Path(__file__).resolve().parents[2]
DEV = ROOT / "build/dev"
PLACE = ROOT / "build/mutate"
TREE = PLACE / "tree"
SEPARATOR = " ## "
EQUAL = Path(__file__).with_name("equal.txt")
LIBRARIES = ("utility/*.cpp", "recentcall/*.cpp", "platform/*.cpp")
GOAL = 90

# Tests that build or install the libraries themselves, count what they cost, or look at the files of the build.
OTHER_LIBRARIES = ("abi", "bad_input", "cost", "headers", "install", "intruder", "man", "packages", "platform_table",
                   "subproject", "units")

# The source that gets the switch.
SWITCH_HOME = "platform/aplog.cpp"
SWITCH_MAP = "abi/libzynplatform.map" # which exports it
SWITCH = r"""
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
extern "C" bool zynMutant(int number)
{
    static const char* const chosen = std::getenv("ZYN_MUTANT");
    static const int switched = chosen ? std::atoi(chosen) : 0;
    static const char* const reached = std::getenv("ZYN_MUTANTS_REACHED");
    static std::atomic<bool> noted[65536];
    if (reached && !noted[number].exchange(true)) {
        const int before = errno;
        const int file = ::open(reached, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        char line[16];
        const int length = std::snprintf(line, sizeof line, "%d\n", number);
        if (file >= 0) {
            [[maybe_unused]] const ssize_t written = ::write(file, line, size_t(length));
            ::close(file);
        }
        errno = before;
    }
    return number == switched;
}
"""


def say(text):
    print("mutate: " + text, file=sys.stderr, flush=True)


def listed(*patterns):
    return subprocess.run(["git", "ls-files", "-z", "--", *patterns], cwd=ROOT, check=True, capture_output=True,
                          text=True).stdout.split("\0")[:-1]


def candidates(files):
    """All mutants of some sources."""
    with concurrent.futures.ProcessPoolExecutor() as pool:
        return [mutant for part in pool.map(found.find, *zip(*((ROOT, [file], DEV) for file in files)))
                for mutant in part]


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
            text += SWITCH.encode()
        write(TREE / file, text)


def build(mutants):
    """Compiles the mutants; gives those that compile."""
    libraries = PLACE / "build"
    configure = ["cmake", "-S", str(TREE), "-B", str(libraries), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                 "-DCMAKE_CXX_FLAGS=-w", "-DZYN_BUILD_PROGRAMS=OFF", "-DZYN_BUILD_TESTS=OFF", "-DZYN_INSTALL=OFF",
                 "-DZYN_BUILD_REFERENCE=OFF", "-DCMAKE_UNITY_BUILD=ON"]
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
        mutants = kept


class Test:
    """A test of the build, as ctest knows it."""

    def __init__(self, entry):
        properties = {item["name"]: item["value"] for item in entry.get("properties", [])}
        self.name = entry["name"]
        self.command = entry.get("command", [])
        self.folder = properties.get("WORKING_DIRECTORY", str(DEV))
        self.environment = dict(item.split("=", 1) for item in properties.get("ENVIRONMENT", []))
        self.is_alone = bool(properties.get("RESOURCE_LOCK"))
        self.is_disabled = bool(properties.get("DISABLED")) or not self.command or self.name in OTHER_LIBRARIES
        self.seconds = 0.0
        self.reached = set()

    def passes(self, limit, **environment):
        libraries = ":".join(str(path.parent) for path in sorted((PLACE / "build").rglob("libzyn*.so.1")))
        process = subprocess.Popen(
            self.command, cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, start_new_session=True,
            env=os.environ | self.environment | {"LD_LIBRARY_PATH": libraries} | environment)
        try:
            return process.wait(limit) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            # Whatever the test has started goes with it.
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()

    def limit(self):
        return 10 + 5 * self.seconds

    def rehearse(self):
        """Runs the test on the unchanged libraries, and notes what it reaches; whether it passes."""
        notes = PLACE / "reached" / self.name
        notes.parent.mkdir(parents=True, exist_ok=True)
        notes.unlink(missing_ok=True)
        start = time.monotonic()
        passed = self.passes(120, ZYN_MUTANTS_REACHED=str(notes))
        self.seconds = time.monotonic() - start
        if notes.exists():
            self.reached = {int(line) for line in notes.read_text().split()}
        return passed


def all_tests(pattern):
    shown = subprocess.run(["ctest", "--preset", "dev", "--show-only=json-v1", "-R", pattern], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout
    return [test for test in map(Test, json.loads(shown)["tests"]) if not test.is_disabled]


def equal_changes():
    """The changes that alter no behaviour, with the reasons."""
    if not EQUAL.exists():
        return {}
    rows = (line.split(SEPARATOR) for line in EQUAL.read_text().splitlines() if line and not line.startswith("#"))
    return {tuple(row[:4]): row[4] for row in rows}


def judge(mutant, tests):
    """The name of the first test that fails with the change, and fails again; none when there is no such test."""
    for test in tests:
        if mutant.number in test.reached and not any(
                test.passes(test.limit(), ZYN_MUTANT=str(mutant.number)) for _ in range(2)):
            return test.name
    return None


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
    parser.add_argument("--json", metavar="FILE", help="write the result of each change to a file")
    return parser.parse_args()


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

    tests = all_tests(options.tests)
    jobs = 1 if any(test.is_alone for test in tests) else os.cpu_count()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        passed = list(pool.map(Test.rehearse, tests))
        left_out = [test.name for test, good in zip(tests, passed) if not good]
        tests = sorted((test for test, good in zip(tests, passed) if good and test.reached),
                       key=lambda test: test.seconds)
        say(f"{len(tests)} tests reach the libraries; these fail with them, and are left out: {' '.join(left_out)}")
        if options.only:
            [mutant] = [mutant for mutant in chosen if mutant.number == options.only]
            print(f"{mutant.file}:{mutant.line}: {mutant.original} -> {mutant.changed}")
            for test in tests:
                if mutant.number in test.reached:
                    fate = "passes" if test.passes(test.limit(), ZYN_MUTANT=str(mutant.number)) else "fails"
                    print(f"  {fate}  {test.name}", flush=True)
            return 0
        equal = equal_changes()
        tried = [mutant for mutant in chosen if mutant.key not in equal]
        done = 0
        results = {pool.submit(judge, mutant, tests): mutant for mutant in tried}
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
        mutant.fate = ("equal" if mutant.key in equal else "caught" if mutant.test
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
