# The front door. Each target is one script; the scripts may be called directly as well.
FILES =

help:
	@echo "make run [FILES=...]  build Quorel and play files, or a demo album without FILES"
	@echo "make test             everything that has to pass before a change is merged"
	@echo "make proof            make test, then the long trials"
	@echo "make bench            the benchmarks"
	@echo "make setup            install the Debian packages that are missing"
	@echo "make format           bring all C++ sources into the house's format"
	@echo "make tidy             clang-tidy over all C++ sources"
	@echo "make clean            remove what was built"

# FILES reaches the shell as it stands: FILES="'a b.flac' c.flac" names two files.
run:
	@scripts/run $(FILES)

test:
	@scripts/test

proof:
	@scripts/test
	@scripts/proof

bench:
	@scripts/bench

setup:
	@scripts/setup

format:
	@scripts/format

tidy:
	@scripts/tidy

clean:
	rm -rf build

.PHONY: help run test proof bench setup format tidy clean
