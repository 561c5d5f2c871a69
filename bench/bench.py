#!/usr/bin/env python3
"""Measures the product beside other programs, in the same run and on the same files.

bench.py [PART...]: the parts named, else all (a quarter of an hour). Prints a table and writes
build/bench.json. A ratio is value / reference; a goal is of the ratio, or of the value alone.
Everything is in a temporary folder (TMPDIR), which needs 15 GB.
bench.py --document writes that table into docs/PERFORMANCE.md."""
import os
import random
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from harness import ROOT, Table, World, document, fail, in_turn, lacks, run, stop_after

DATE = '2021:03:05 23:30:00'
SECONDS = 1614987000
EXIFTOOL = ['exiftool', '-q', '-q', '-overwrite_original', f'-DateTimeOriginal={DATE}',
            f'-CreateDate={DATE}', f'-ModifyDate={DATE}']
EXIV2 = ['exiv2', '-M', f'set Exif.Photo.DateTimeOriginal {DATE}',
         '-M', f'set Exif.Photo.DateTimeDigitized {DATE}', '-M', f'set Exif.Image.DateTime {DATE}']


def emptied(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


def pictures(folder, count, size=0):
    """So many dated JPEGs, each with this much more in its scan. Returns their paths."""
    run('quorvane-sample-library', folder, count)
    files = sorted(folder.rglob('*.jpg'))
    filling = os.urandom(size).replace(b'\xff', b'\0')
    for number, file in enumerate(files if size else []):
        whole = file.read_bytes()
        file.write_bytes(whole[:-2] + b'%08d' % number + filling + whole[-2:])
    os.sync()
    return files


def movie(file, folder, size):
    """A movie that a sparse box makes as long as wanted."""
    if not (folder / 'sample').exists():
        run('quorvane-sample-library', folder / 'sample')
    whole = (folder / 'sample/Videolar/klip.mov').read_bytes()
    rest = size - len(whole)
    file.write_bytes(whole + b'\0\0\0\1mdat' + rest.to_bytes(8, 'big'))
    os.truncate(file, size)


def read_once(file):
    """So that the system does not fill its cache at the cost of the first reader."""
    with open(file, 'rb') as content:
        while content.read(1 << 24):
            pass


def store(table, folder):
    what, goal, count = 'store: 200,000 made, counted, fetched, retried; records/s', '>= 0.9', 200_000
    if missing := lacks('sqlite3'):
        return table.left_out(what, goal, missing)
    script, empty, used = folder / 'script.sql', folder / 'empty.sqlite', folder / 'used.sqlite'
    script.write_bytes(run('quorvane-bench', 'store-script', count).output)
    run('quorvane-bench', 'store', empty, 0)

    def ours():
        used.unlink(missing_ok=True)
        return run('quorvane-bench', 'store', used, count)

    def shell():
        shutil.copy(empty, used)
        with open(script) as statements:
            return run('sqlite3', used, stdin=statements)
    mine, theirs = in_turn(ours, shell)
    table.add(what, count / mine.wall, goal, count / theirs.wall)


def hashing(table, folder):
    file = folder / 'file'
    file.write_bytes(b'')
    os.truncate(file, 1 << 30)
    read_once(file)
    mine, theirs = in_turn(lambda: run('quorvane-bench', 'hash', file),
                           lambda: run('openssl', 'dgst', '-sha256', file))
    table.add('hash and size of 1 GiB, beside openssl; GiB/s', 1 / mine.wall, '>= 0.95', 1 / theirs.wall)


def staging(table, folder):
    library, copies = folder / 'library', folder / 'copies'
    count = len(pictures(library, 1000, 3_000_000))

    def ours():
        home = emptied(folder / 'home')
        return run('quorvane-bench', 'stage', home, library)

    def bare():
        return run('quorvane-bench', 'copy', library, emptied(copies))

    def others():
        shutil.rmtree(copies)
        return [run('cp', '-r', library, copies), run(*EXIFTOOL, '-r', copies),
                run('sh', '-c', 'find "$0" -type f -exec sha256sum {} +', copies), run('sync', '-f', copies)]
    mine, plain = in_turn(ours, bare)
    shutil.rmtree(folder / 'home')
    table.add('staging 1,000 JPEGs of 3 MB, beside a bare copy and 2 hashes; s', mine.wall, '<= 1.3', plain.wall)
    what, goal = 'the same, beside cp, exiftool, sha256sum, sync; pictures/s', '>= 3'
    if missing := lacks('exiftool'):
        return table.left_out(what, goal, missing)
    table.add(what, count / mine.wall, goal, count / in_turn(others)[0].wall)


def dates(table, folder):
    run('quorvane-sample-library', folder / 'sample')
    jpeg = pictures(folder / 'jpeg', 1, 3_000_000)[0]
    samples = {'JPEG': jpeg} | {kind: next((folder / 'sample').rglob(f'*.{kind.lower()}'), None)
                                for kind in ('PNG', 'WebP', 'TIFF')}
    samples['TIFF'] = samples['TIFF'] or next((folder / 'sample').rglob('*.tif'), None)
    if lacks('heif-enc'):
        table.left_out('date into HEIC', '<= 0.12', lacks('heif-enc'))
    else:
        heic = folder / 'sample.heic'
        run('heif-enc', jpeg, '-o', heic)
        heic.write_bytes(heic.read_bytes() + (2_000_008).to_bytes(4, 'big') + b'free' + bytes(2_000_000))
        samples['HEIC'] = heic
    for kind, sample in samples.items():
        dates_into(table, folder, kind, sample)


def dates_into(table, folder, kind, sample, count=300):
    """Each file is written anew beside the old one, flushed, and takes its place, by us and by the
    others: exiftool flushes nothing, and exiv2 writes into the file itself."""
    def fresh():
        """A folder of its own with copies, and one to put others aside. Those of before are emptied
        and stay: where many files were just removed, ext4 takes long to make new ones."""
        for file in folder.glob('copies-*/*/*'):
            os.truncate(file, 0)
        place = Path(tempfile.mkdtemp(prefix='copies-', dir=folder))
        files = [place / f'of/{i}{sample.suffix}' for i in range(count)]
        emptied(place / 'of')
        for file in files:
            shutil.copy(sample, file)
        return files, emptied(place / 'aside')

    def ours():
        return run('quorvane-bench', 'stamp', SECONDS, *fresh()[0])

    def exiftool():
        files, _ = fresh()
        return [run(*EXIFTOOL, *files), run('sync', *files)]

    def exiv2():
        files, aside = fresh()
        made = [aside / file.name for file in files]
        return [run('cp', '-t', aside, *files), run(*EXIV2, *made), run('sync', *made),
                run('mv', '-t', files[0].parent, *made)]

    def bare():
        files, aside = fresh()
        return [run('cp', '-t', aside, *files), run('sync', *(aside / file.name for file in files))]
    peers = [('exiftool', 'exiftool, sync', '<= 0.12', exiftool)]
    if kind != 'HEIC':  # exiv2 writes none
        peers.append(('exiv2', 'cp, exiv2, sync, mv', '<= 0.6', exiv2))
    if kind in ('JPEG', 'HEIC'):
        peers.append(('cp', 'cp, sync', '<= 1.3' if kind == 'JPEG' else '<= 2', bare))
    there = [peer for peer in peers if not lacks(peer[0])]
    mine, *theirs = in_turn(ours, *(work for *_, work in there))
    for (_, steps, goal, _), each in zip(there, theirs):
        table.add(f'date into {kind}, flushed, beside {steps}; CPU ms', mine.cpu * 1000 / count, goal,
                  each.cpu * 1000 / count)
    for name, steps, goal, _ in peers:
        if lacks(name):
            table.left_out(f'date into {kind}, flushed, beside {steps}; CPU ms', goal, lacks(name))


def movies(table, folder, count=50):
    def stamped(size):
        made = emptied(folder / 'movies')
        files = [made / f'{i}.mov' for i in range(count)]
        for file in files:
            movie(file, folder, size)
        return run('quorvane-bench', 'stamp', SECONDS, *files)
    small, large, huge = in_turn(*(lambda size=size: stamped(size) for size in (10**6, 10**9, 20 * 10**9)))
    for name, each in (('1 GB', large), ('20 GB', huge)):
        table.add(f'date into a movie of {name}, beside one of 1 MB; ms', each.wall * 1000 / count,
                  '<= 1.5', small.wall * 1000 / count)
    emptied(folder / 'movies')
    one = folder / 'movies/one.mov'
    rewritten = folder / 'movies/rewritten.mov'
    peers = {'exiftool': [*EXIFTOOL[:4], f'-CreateDate={DATE}', one],
             'ffmpeg': ['ffmpeg', '-v', 'error', '-y', '-i', one, '-c', 'copy', '-metadata',
                        'creation_time=2021-03-05T23:30:00Z', rewritten]}
    for name, command in peers.items():
        what, goal = f'date into a movie of 1 GB, beside {name}; movies/s', '>= 100'
        if missing := lacks(name):
            table.left_out(what, goal, missing)
            continue
        movie(one, folder, 10**9)
        table.add(what, count / large.wall, goal, 1 / in_turn(lambda: run(*command))[0].wall)


def upload(table, folder):
    file = folder / 'movie.mov'
    movie(file, folder, 1 << 30)
    read_once(file)
    with subprocess.Popen(['quorvane-bench', 'sink'], stdout=subprocess.PIPE, text=True) as sink:
        url = f'http://127.0.0.1:{sink.stdout.readline().strip()}'
        raw, resumable, curl = in_turn(
            lambda: run('quorvane-bench', 'send', 'raw', url, file),
            lambda: run('quorvane-bench', 'send', 'resumable', url, file),
            lambda: run('curl', '-s', '-H', 'Expect:', '-X', 'POST', '-T', file, url + '/v1/uploads'))
        sink.kill()
    table.add('upload of 1 GiB in one request, beside curl -T; GiB/s', 1 / raw.wall, '>= 1.2', 1 / curl.wall)
    table.add('upload of 1 GiB in pieces, beside curl -T; GiB/s', 1 / resumable.wall, '>= 1', 1 / curl.wall)
    table.add('memory of both; MiB', max(raw.memory, resumable.memory), '< 40')


def posting(url, token, files, folder):
    """A client that only posts: one connection, nothing kept."""
    entry = f'url = "{url}/v1/uploads"\nheader = "Authorization: Bearer {token}"\noutput = /dev/null\n'
    script = folder / 'posts'
    script.write_text('silent\nfail\n' + 'next\n'.join(entry + f'data-binary = "@{file}"\n' for file in files))
    return run('curl', '-K', script)


def whole(table, folder):
    library = folder / 'library'
    files = pictures(library, 10_000, 100_000)
    with World(folder / 'world') as world:
        mine = world.sync(library)
        reference = [run('quorvane-bench', 'copy', library, folder / 'copies'),
                     posting(world.url, world.token(), files, folder)]
        shutil.rmtree(folder / 'copies')
        table.add('whole run, 10,000 of 100 KB, beside copies, hashes, posts; s', mine.wall, '<= 1.3',
                  sum(r.wall for r in reference))
        marker, before = folder / 'marker', world.requests()
        marker.touch()
        again, find = in_turn(lambda: world.sync(library), lambda: run('find', library, '-newer', marker))
        table.add('the same again, nothing new, beside find -newer; s', again.wall, '<= 3', find.wall)
        sent = {kind: n - before.get(kind, 0) for kind, n in world.requests().items()}
        table.add('the same again: requests but for the session',
                  sum(n for kind, n in sent.items() if kind not in ('auth', 'token', 'userinfo')), '<= 0')
    small = folder / 'small'
    count = len(pictures(small, 10_000))
    with World(folder / 'world') as world:
        table.add('whole run, 10,000 small pictures; CPU ms each', world.sync(small).cpu * 1000 / count, '<= 1.1')


def latency(table, folder, count=500):
    library = folder / 'library'
    pictures(library, count)
    with World(folder / 'world', '--latency', '100', '--latency-of', 'batchCreate:1000') as world:
        bound = max(count / 2 * 0.1, count / 25 * 1.0)
        table.add('whole run, 500 files, 100 ms latency, batches 1 s; s', world.sync(library).wall, '<= 1.1', bound)


def originals(bundle, count):
    """What `bundle.sql` names. Links are quicker to make and to remove than files."""
    for folder in range(16):
        (bundle / f'originals/{folder:X}').mkdir(parents=True)
    for i in range(count):
        original = bundle / f'originals/{(i + 1) % 16:X}/{i + 1}.jpg'
        if i % 50_000 == 0:
            first = original
            original.touch()
        else:
            original.hardlink_to(first)


def made_bundle(bundle, count):
    (emptied(bundle) / 'database').mkdir()
    with sqlite3.connect(bundle / 'database/Photos.sqlite') as database:
        database.executescript((ROOT / 'bench/bundle.sql').read_text().replace(':count', str(count)))
    database.close()
    originals(bundle, count)


def memory(table, folder):
    for count in (1_000, 100_000, 200_000, 1_000_000):
        bundle, home = folder / 'Made.photoslibrary', emptied(folder / 'home')
        made_bundle(bundle, count)
        found = in_turn(lambda: run('quorvane-bench', 'scan', emptied(home), bundle))[0]
        if count == 200_000:
            table.add('200,000 assets of a bundle listed; s', found.wall, '<= 2')
        else:
            table.add(f'memory at {count:,} assets; MiB', found.memory, f'<= {30 + 0.2 * count / 1024:.1f}')


class Display:
    """A display of its own with a tray, for the programs run with `env`."""

    def __init__(self, folder, env):
        self.name = folder / 'display-name'
        self.process = subprocess.Popen(
            [ROOT / 'tests/window/with-tray.sh', 'sh', '-c', 'echo "$DISPLAY" >"$0"; read -r line', self.name],
            stdin=subprocess.PIPE, env=env)
        while not self.name.exists() or not self.name.read_text().strip():
            time.sleep(0.05)
        time.sleep(1)  # the tray
        env.update(DISPLAY=self.name.read_text().strip(), QT_QPA_PLATFORM='xcb')

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.communicate()
        self.name.unlink()


def told(ended):
    """The number that a program printed; its log goes the same way."""
    return all_told(ended)[-1]


def all_told(ended):
    return [float(line) for line in ended.output.split(b'\n') if re.fullmatch(rb'[\d.]+', line)]


def window(table, folder, count=5000):
    goal, missing = '>= 0.9', lacks('Xvfb', 'openbox', 'trayer')
    if missing:
        table.left_out('window', goal, missing)
        return table.left_out('start to icon', '<= 1.5', missing)
    pictures(folder / 'made', count)
    speeds = {}
    for mode in ('hidden', 'visible'):
        library = emptied(folder / 'library')
        with World(folder / 'world') as world, Display(folder, world.env):
            world.sync(library)  # remembers it
            shutil.copytree(folder / 'made', library, dirs_exist_ok=True)
            speeds[mode] = count / told(world.run('quorvane-bench-window', mode))
            if sum(world.requests().get(kind, 0) for kind in ('upload',)) < count:
                fail(f'The window ({mode}) sent too little: {world.requests()}')
    table.add('window: 5,000 items with it visible, beside hidden; items/s', speeds['visible'], goal, speeds['hidden'])
    with World(folder / 'world') as world, Display(folder, world.env):
        world.sync(emptied(folder / 'library'))

        def launch(*command):
            begun = time.monotonic()
            launched = world.run(*command)
            launched.wall = told(launched) - begun
            return launched
        mine, empty = in_turn(lambda: launch('quorvane-bench-window', 'start'), lambda: launch('quorvane-bench-empty'))
        table.add('start to icon, beside an empty Qt program; ms', mine.wall * 1000, '<= 1.5', empty.wall * 1000)


def full_window(table, folder, count=220_000):
    """The window over a store that is full, a part of it held back."""
    if missing := lacks('Xvfb', 'openbox', 'trayer'):
        return table.left_out('window: first show of a full store', '<= 100', missing)
    bundle = folder / 'Made.photoslibrary'
    made_bundle(bundle, count)
    with World(folder / 'world') as world, Display(folder, world.env):
        world.run('quorvane-cli', 'albums', '--local', '--library', bundle)  # remembers it
        process = subprocess.Popen(['quorvane-cli', 'sync', '--quiet'], env=world.env,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        while not world.state('SELECT COUNT(*) >= ? FROM sync_records', count):
            time.sleep(0.1)
        stop_after(process, 0)
        world.state("""UPDATE sync_records SET remote_media_id = rowid, last_error = iif(rowid % 11, NULL, 'HTTP 500'),
            sync_status = iif(rowid % 11, 'VERIFIED', 'FAILED')""")
        first, longest = (1000 * s for s in all_told(world.run('quorvane-bench-window', 'show')))
    table.add('window: first show, 200,000 items sent, 20,000 held back; ms', first, '<= 100')
    table.add('window: longest pause, from the launch on; ms', longest, '<= 100')


def status(table, folder):
    with World(folder / 'world') as world:
        pictures(folder / 'library', 100)
        world.sync(folder / 'library')
        table.add('quorvane-cli status; ms', in_turn(lambda: world.run('quorvane-cli', 'status'))[0].wall * 1000, '< 30')


def stops(table, folder, count=40):
    """SIGINT at random instants of a run with uploads, batches, back-off waits, token refreshes (a
    token lasts two seconds) and a movie of 4 GiB that is being copied."""
    faults = [word for n in range(40, 2000, 60) for word in ('--fault', f'upload:{n}:503')]
    library = folder / 'library'
    pictures(library, 2000)
    movie(library / 'VID_20210305_182210.mov', folder, 4 << 30)
    chance = random.Random(1)
    with World(folder / 'world', '--latency', '40', '--token-lifetime', '62', *faults) as world:
        times = []
        for number in range(count):
            process = subprocess.Popen(['quorvane-cli', 'sync', '--library', library, '--quiet'], env=world.env,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            times.append(stop_after(process, chance.uniform(0.1, 1.9)) * 1000)
            if number % 10 == 9:
                world.run('quorvane-cli', 'retry')
        times.sort()
    table.add(f'stop of a run, median of {count}; ms', times[count // 2], '<= 20')
    table.add(f'stop of a run, worst of {count}; ms', times[-1], '<= 100')


PARTS = [store, hashing, staging, dates, movies, upload, whole, latency, memory, window, full_window, status, stops]
RESULTS = ROOT / 'build/bench.json'


def main():
    names = sys.argv[1:]
    if names == ['--document']:
        return document(RESULTS, ROOT / 'docs/PERFORMANCE.md')
    parts = [part for part in PARTS if not names or part.__name__ in names]
    if not parts or len(parts) < len(names):
        fail('bench.py [' + '|'.join(part.__name__ for part in PARTS) + ']...')
    table = Table(RESULTS, goes_on=bool(names))
    print(f'{"":<62} {"value":>9} {"reference":>9} {"ratio":>8}  goal')
    with tempfile.TemporaryDirectory(prefix='quorvane-bench-') as temporary:
        for part in parts:
            part(table, emptied(Path(temporary) / part.__name__))
            shutil.rmtree(Path(temporary) / part.__name__)
            table.write(temporary)


if __name__ == '__main__':
    main()
