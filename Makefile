# Thin front of CMake. `make demo` and `make test` do everything on a fresh Debian machine.
TACHES ?= $(shell nproc)
CMAKE_OPTIONS ?=
CONFIGURER = cmake --preset $(1) -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache $(CMAKE_OPTIONS) >/dev/null

.PHONY: all install package demo test test-release test-release32 test-assaini test-python test-fils fils test-versions test-paquets corruption endurance mutations part-des-tests bench instructions format propre paquets release release32

all: release release32

paquets:
	@packaging/installer-paquets

release: paquets
	@$(call CONFIGURER,release) -DNOXLUX_TESTS=OFF
	@cmake --build build/release -j $(TACHES)

release32: paquets
	@$(call CONFIGURER,release32) -DNOXLUX_TESTS=OFF
	@cmake --build build/release32 -j $(TACHES)

install: release
	@cmake --install build/release

package:
	@packaging/construire-paquets

demo: release
	@packaging/demo build/release

test: test-release test-release32 test-assaini test-fils

test-release: paquets
	@$(call CONFIGURER,release) -DNOXLUX_TESTS=ON
	@cmake --build build/release -j $(TACHES)
	@cd build/release && ctest --output-on-failure -j $(TACHES)

test-release32: test-release
	@$(call CONFIGURER,release32) -DNOXLUX_TESTS=ON -DNOXLUX_REFERENCE_EXEMPLE=$(CURDIR)/build/release/exemple/
	@cmake --build build/release32 -j $(TACHES)
	@cd build/release32 && ctest --output-on-failure -j $(TACHES)

test-assaini: paquets
	@$(call CONFIGURER,debug)
	@cmake --build build/debug -j $(TACHES)
	@cd build/debug && ctest --output-on-failure -j $(TACHES)

# The Python package with pandas, on a scheduler that loses a worker, and its hints.
PYTHON = /usr/bin/python3
test-python: release
	@build/release/noxlux compiler reference/exemple --socle reference/socle -o build/exemple >/dev/null
	@packaging/installer-paquets python3-distributed python3-pandas mypy
	@cd python && $(PYTHON) -m mypy --config-file pyproject.toml --cache-dir ../build/mypy noxlux
	@$(PYTHON) tests/python/verifier-distribue.py build/release/noxlux build/release/libnoxlux.so build/exemple .

# The page of the service in a real browser; tells where none can run, or where its accessibility cannot be checked.
.PHONY: test-page
test-page: AXE = build/page/node_modules/axe-core/axe.min.js
test-page: release
	@packaging/installer-paquets chromium chromium-driver python3-selenium || echo "test-page: the browser cannot be installed"
	@command -v npm >/dev/null || packaging/installer-paquets npm || echo "test-page: npm cannot be installed"
	@[ -f $(AXE) ] || npm install --no-save --no-audit --no-fund --fetch-retries 1 --prefix build/page axe-core@4.14.1 >/dev/null 2>&1 || \
	  echo "test-page: axe-core cannot be had"
	@build/release/noxlux compiler reference/exemple --socle reference/socle -o build/exemple >/dev/null
	@$(PYTHON) tests/page/verifier-page.py build/release/noxlux build/exemple . $$([ ! -f $(AXE) ] || echo $(AXE)) || [ $$? -eq 77 ]

# The packages, installed in a fresh Debian 12 and put to use there; tells where no such system can be made.
test-paquets: package
	@packaging/tester-paquets || [ $$? -eq 77 ]

# One version everywhere, and the binary interface of the last one published.
test-versions:
	@packaging/installer-paquets abigail-tools
	@packaging/verifier-versions

# Eight threads under ThreadSanitizer, DUREE seconds: a few in `make test`, a minute in `make fils`.
test-fils: DUREE ?= 4
fils: DUREE ?= 60
test-fils fils: test-release
	@$(call CONFIGURER,tsan) -DNOXLUX_REFERENCE_EXEMPLE=$(CURDIR)/build/release/exemple/
	@cmake --build build/tsan -j $(TACHES) --target test_fils
	@cd build/tsan && NOXLUX_DUREE=$(DUREE) ctest --output-on-failure

# Every byte of the reference files damaged in turn, under the sanitizers: long.
corruption: paquets
	@$(call CONFIGURER,debug)
	@cmake --build build/debug -j $(TACHES)
	@cd build/debug && NOXLUX_CORRUPTION_COMPLETE=1 ctest --output-on-failure -j $(TACHES) -R '^(referent|bout_en_bout)$$' --timeout 1000000

# A million mixed requests in one process: the memory in use stays what it is.
endurance: paquets
	@$(call CONFIGURER,release) -DNOXLUX_TESTS=ON
	@cmake --build build/release -j $(TACHES) --target corpus --target reference_exemple
	@build/release/corpus $(CURDIR)/build/release/exemple/ 1000000

.PHONY: couverture fuzz
# Lines and branches that the tests reach, by directory, then what they do not reach.
couverture: paquets
	@packaging/installer-paquets gcovr
	@$(call CONFIGURER,couverture)
	@cmake --build build/couverture -j $(TACHES)
	@find build/couverture -name '*.gcda' -delete
	@cd build/couverture && ctest --output-on-failure -j $(TACHES)
	@tests/couverture build/couverture

# Inputs that the library or the command do not stand, each target for DUREE seconds (60).
fuzz: paquets
	@packaging/installer-paquets libclang-rt-14-dev
	@$(call CONFIGURER,fuzz)
	@cmake --build build/fuzz -j $(TACHES) --target cibles_fuzz
	@fuzz/lancer build/fuzz

# A hundred changes of the code, one at a time: prints those that no test sees. Hours.
mutations: release
	@build/release/noxlux compiler reference/exemple --socle reference/socle -o build/exemple
	@NOXLUX_REFERENCE_EXEMPLE=$(CURDIR)/build/exemple/ python3 tests/mutations.py . build/mutations

# Each header compiled by itself, which batches of sources would not ask.
.PHONY: entetes
entetes: paquets
	@tests/analyse/entetes-seuls.py .

# What tests weigh beside the code: a third at most.
part-des-tests:
	@lignes() { git ls-files -z "$$@" | xargs -0 cat | grep -c '[^[:space:]]'; }; \
	t=$$(lignes tests); c=$$(lignes src include outils); \
	echo "tests: $$t lines for $$c of code, $$((1000 * t / c / 10)).$$((1000 * t / c % 10)) %"; test $$((3 * t)) -le $$c

bench: paquets
	@$(call CONFIGURER,bench)
	@cmake --build build/bench -j $(TACHES)
	@bench/lancer build/bench

# The service under load: 1, 8, 64 clients.
.PHONY: bench-serveur
bench-serveur: paquets
	@$(call CONFIGURER,bench)
	@cmake --build build/bench -j $(TACHES) --target noxlux_commande --target reference_exemple --target client_serveur
	@bench/bench-serveur build/bench

# Instructions of a question, counted one by one: what a busy machine does not blur.
instructions: paquets
	@packaging/installer-paquets valgrind
	@$(call CONFIGURER,bench)
	@cmake --build build/bench -j $(TACHES) --target bench_instructions --target noxlux_commande
	@bench/instructions/compter build/bench

format:
	@git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format -i

propre:
	@rm -rf build
