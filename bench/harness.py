"""Runs programs and measures them; a home of its own for those of the product; the table."""
import contextlib
import json
import math
import os
import shutil
import signal
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import asdict, dataclass
from datetime import date
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BIN = ROOT / 'build/bin'
os.environ['PATH'] = f'{BIN}:{os.environ["PATH"]}'
QUICK = 5  # seconds: what takes less is measured five times


@dataclass
class Run:
    """One run of a program: seconds, seconds, MiB at most (not a number where nothing tells)."""
    wall: float
    cpu: float
    memory: float
    output: bytes


def run(*command, env=None, stdin=None, ends=(0,)):
    """Runs a command to its end. What it prints is kept; it may end with these codes. Its memory is
    asked of time(1): what the kernel tells of a child begins with the memory of its parent."""
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors, \
            tempfile.NamedTemporaryFile('r') as memory:
        timed = ['time', '-f', '%M', '-o', memory.name] if shutil.which('time') else []
        begun = time.monotonic()
        process = subprocess.Popen(timed + [str(word) for word in command], env=env, stdin=stdin,
                                   stdout=output, stderr=errors)
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.monotonic() - begun
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode not in ends:
            errors.seek(0)
            raise RuntimeError(f'{command[0]} ended with {process.returncode}: '
                               f'{errors.read().decode(errors="replace")[-500:]}')
        output.seek(0)
        peak = int(memory.read().split()[-1]) / 1024 if timed else math.nan
        return Run(wall, usage.ru_utime + usage.ru_stime, peak, output.read())


def in_turn(*works):
    """Does each work once, and five times in turn when all are quick. A work returns a Run, or
    several, which count together. Returns the median Run of each, by wall time."""
    def once(work):
        runs = work()
        runs = runs if isinstance(runs, list) else [runs]
        return Run(sum(r.wall for r in runs), sum(r.cpu for r in runs),
                   max(r.memory for r in runs), runs[-1].output)
    rounds = [[once(work) for work in works]]
    if all(r.wall < QUICK for r in rounds[0]):
        rounds += [[once(work) for work in works] for _ in range(4)]
    def median(runs):
        middle = [statistics.median(getattr(r, name) for r in runs)
                  for name in ('wall', 'cpu', 'memory')]
        return Run(*middle, runs[-1].output)
    return [median(runs) for runs in zip(*rounds)]


class World:
    """A home of its own with a local service in it, and somebody signed in."""

    def __init__(self, folder, *service):
        self.folder = Path(folder)
        self.folder.mkdir(parents=True)
        shell = '. scripts/private-world.sh; private_world "$0"; '
        text = subprocess.run(['bash', '-c', shell + 'env -0', str(folder)], cwd=ROOT, check=True,
                              capture_output=True, text=True).stdout
        self.env = dict(entry.split('=', 1) for entry in text.split('\0') if '=' in entry)
        port = self.folder / 'port'
        self.service = subprocess.Popen(['quorvane-emulator', '--port-file', str(port), *service],
                                        env=self.env, stdout=subprocess.DEVNULL)
        while not port.exists() or not port.read_text().strip():
            time.sleep(0.02)
        self.env['GOOGLE_DAILY_REQUESTS'] = '1000000'
        self.url = self.env['QUORVANE_GOOGLE_BASE_URL'] = f'http://127.0.0.1:{port.read_text().strip()}'
        subprocess.run(['bash', '-c', shell + 'sign_in', str(folder)], cwd=ROOT, check=True, env=self.env)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.service.terminate()
        self.service.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def run(self, *command, **options):
        return run(*command, env=self.env, **options)

    def sync(self, library):
        return self.run('quorvane-cli', 'sync', '--library', library, '--quiet', ends=(0, 4))

    def state(self, statement, *values):
        """The first value that a statement of the state's database yields; None while there is none."""
        for database in self.folder.rglob('quorvane.sqlite'):
            with contextlib.closing(sqlite3.connect(database, timeout=60)) as store, store:
                if store.execute("SELECT 1 FROM sqlite_schema WHERE name = 'sync_records'").fetchone():
                    return (store.execute(statement, values).fetchone() or [None])[0]
        return None

    def requests(self):
        """How many there were, by kind."""
        report = run('curl', '-s', self.url + '/_quorvane/report').output
        return {kind: n for kind, n in json.loads(report)['requests'].items() if n and kind != 'report'}

    def token(self):
        home = Path(self.env['HOME'])
        for file in home.rglob('preferences.json'):
            for key, value in json.loads(file.read_text()).items():
                if key.endswith('access_token'):
                    return value
        raise RuntimeError('nobody is signed in')


@dataclass
class Row:
    what: str
    value: float | None      # in the unit that `what` names; none: left out
    reference: float | None  # the same of what it is measured beside
    ratio: float | None      # value / reference
    goal: str                # of the ratio; of the value where there is no reference
    met: bool | None


def number(x):
    return '-' if x is None else f'{x:.0f}' if x >= 1000 else f'{x:.4g}'


class Table:
    def __init__(self, file, goes_on):
        """`goes_on`: the rows that `file` has stay until they are measured again."""
        self.file = file
        earlier = json.loads(file.read_text())['rows'] if goes_on and file.exists() else []
        self.rows = {row['what']: Row(**row) for row in earlier}

    def add(self, what, value, goal, reference=None):
        """`goal` is '>= NUMBER', '<= NUMBER' or '< NUMBER'."""
        if math.isnan(value):
            return self.left_out(what, goal, 'nothing measures it here')
        sign, limit = goal.split()
        ratio = None if reference is None else value / reference
        judged = value if ratio is None else ratio
        met = {'>=': judged >= float(limit), '<=': judged <= float(limit),
               '<': judged < float(limit)}[sign]
        self.show(Row(what, value, reference, ratio, goal, met))

    def left_out(self, what, goal, why):
        self.show(Row(what, None, None, None, goal, None), why)

    def show(self, row, why=''):
        self.rows[row.what] = row
        verdict = f'LEFT OUT: {why}' if row.met is None else 'met' if row.met else 'MISSED'
        print(f'{row.what:<62} {number(row.value):>9} {number(row.reference):>9} '
              f'{number(row.ratio):>8}  {row.goal:<8} {verdict}', flush=True)

    def write(self, folder):
        self.file.parent.mkdir(parents=True, exist_ok=True)
        rows = [asdict(row) for row in self.rows.values()]
        self.file.write_text(json.dumps({'date': date.today().isoformat(), 'machine': machine(folder),
                                         'rows': rows}, indent=1) + '\n')


def document(results, page):
    """Puts the results in place of the table in a page."""
    found = json.loads(results.read_text())
    lines = [f'{found["date"]}, {found["machine"]}', '',
             '| what | value | reference | ratio | goal | met |', '| --- | --: | --: | --: | --- | --- |']
    for row in found['rows']:
        numbers = ' | '.join(number(row[name]) for name in ('value', 'reference', 'ratio'))
        met = {True: 'yes', False: 'no', None: 'left out'}[row['met']]
        lines.append(f'| {row["what"]} | {numbers} | {row["goal"]} | {met} |')
    before, rest = page.read_text().split('<!-- table -->')
    after = rest.split('<!-- end -->')[1]
    page.write_text(before + '<!-- table -->\n' + '\n'.join(lines) + '\n<!-- end -->' + after)


def machine(folder):
    """What was measured on, in a line."""
    cpu = next((line.split(':')[1].strip() for line in open('/proc/cpuinfo')
                if line.startswith('model name')), os.uname().machine)
    memory = os.sysconf('SC_PAGE_SIZE') * os.sysconf('SC_PHYS_PAGES') / 2**30
    system = run('stat', '-f', '-c', '%T', folder).output.decode().strip()
    return (f'{os.cpu_count()} x {cpu}, {memory:.0f} GiB, Linux {os.uname().release}, {system}; '
            f'load at the end {os.getloadavg()[0]:.1f}')


def lacks(*programs):
    """Which of them are not installed, as text; empty for none."""
    return ', '.join(f'no {program}' for program in programs if not shutil.which(program))


def stop_after(process, seconds):
    """Sends SIGINT after a while. Returns the seconds until the process was gone."""
    time.sleep(seconds)
    begun = time.monotonic()
    process.send_signal(signal.SIGINT)
    process.wait()
    return time.monotonic() - begun


def fail(message):
    print(message, file=sys.stderr)
    sys.exit(1)
