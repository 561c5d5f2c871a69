# The front door: every target works from a clean clone on Debian 12.
.PHONY: help build demo demo-ui run packaged install deb app dmg test check bench soak sweep fuzz format lint setup clean

PREFIX ?= /usr/local

help:
	@echo 'make demo    build, then back up a sample library to a local Google Photos service'
	@echo 'make run     build, then start the status item and its window'
	@echo 'make demo-ui the window over the sample library and the local service, signed in'
	@echo 'make install into PREFIX=/usr/local, below DESTDIR if given; make deb: a Debian package'
	@echo 'make app     on a Mac: build/Quorvane.app; make dmg: a disk image of it'
	@echo 'make test    build and run every test (development, address and thread sanitizer)'
	@echo 'make check   lint, and deb; with test, what continuous integration does'
	@echo 'make build   build the programs into build/bin/'
	@echo 'make bench   measure beside other programs, into build/bench.json (PARTS="store upload": these)'
	@echo 'make soak    kill the program at random instants for 20 minutes (MINUTES=n: for n)'
	@echo 'make sweep   fail every system call and statement of a small backup, one after another'
	@echo 'make setup   install the Debian packages that are missing (the others call it)'
	@echo 'make format  format the sources; make lint: check format, C++ and QML'

setup:
	@scripts/setup.sh build test run

build:
	@scripts/setup.sh build
	@scripts/build.sh release

demo: build
	@scripts/setup.sh demo
	@scripts/demo.sh

run: build
	@scripts/setup.sh run
	@build/bin/quorvane

demo-ui: build
	@scripts/setup.sh demo run
	@scripts/demo-ui.sh

packaged:
	@scripts/setup.sh build run demo package
	@scripts/build.sh release

install: packaged
	@DESTDIR=$(DESTDIR) cmake --install build/release --prefix $(PREFIX)

deb: packaged
	@scripts/deb.sh

app:
	@[ "$$(uname)" = Darwin ] || { echo "make app and make dmg need a Mac; this is $$(uname)." >&2; exit 1; }
	@scripts/build.sh release
	@scripts/app.sh

dmg: app
	@scripts/dmg.sh

test:
	@scripts/setup.sh build test run
	@scripts/test.sh

check: lint
	@scripts/setup.sh package
	@$(MAKE) deb

bench: build
	@scripts/setup.sh bench || echo 'Some peers could not be installed: their rows are left out.' >&2
	@bench/bench.py $(PARTS)

soak: build
	@scripts/setup.sh build test bench
	@scripts/soak.sh $(MINUTES)

sweep: build
	@scripts/setup.sh build test
	@scripts/sweep.sh

fuzz:
	@scripts/setup.sh build fuzz
	@scripts/fuzz.sh

format:
	@git ls-files '*.cpp' '*.h' '*.mm' | xargs clang-format -i

lint:
	@scripts/setup.sh build test lint
	@scripts/lint.sh

clean:
	rm -rf build
