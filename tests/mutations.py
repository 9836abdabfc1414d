#!/usr/bin/env python3
"""Changes the code in about a hundred places, one at a time, and names the changes that no test sees.

Usage: mutations.py SOURCES WORK_DIRECTORY [--nombre N] [--dossiers src/regles ...] [--matrice FILE],
with the compiled example reference named by NOXLUX_REFERENCE_EXEMPLE

A copy of the sources is compiled once with every change in it, each behind its number; the environment chooses
the one at work, so that a change costs the run of the suites and no compilation. The draw is always the same.
--matrice writes every test that sees each change, instead of stopping at the first suite that does.
"""
import argparse
import collections
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys

ENTETE = """#pragma once
#pragma GCC diagnostic ignored "-Wparentheses"
#include <cstdlib>
#include <type_traits>
namespace mutants {
inline const int CHOISI = std::getenv("NOXLUX_MUTANT") ? std::atoi(std::getenv("NOXLUX_MUTANT")) : -1;
constexpr bool actif(int n) { return !std::is_constant_evaluated() && n == CHOISI; }
"""
OPERATEURS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
# a < b becomes a < I<n>{} < b: the two halves bind from the left, as the comparison did.
for rang, (vrai, faux) in enumerate(OPERATEURS.items()):
    ENTETE += f"""
template <int N> struct O{rang} {{}};
template <class T, int N> struct M{rang} {{ const T& g; }};
template <class T, int N> constexpr M{rang}<T, N> operator{vrai}(const T& g, O{rang}<N>) {{ return {{g}}; }}
template <class T, int N, class U> constexpr bool operator{vrai}(M{rang}<T, N> m, const U& d) {{
  return actif(N) ? m.g {faux} d : m.g {vrai} d;
}}
"""
ENTETE += "}\n"
# Orderings compare with 0 alone: they are left as they are.
COMPARAISON = re.compile(r"(?<=[\w)\]]) (==|!=|(?:<=|>=|<|>)(?! 0\b)) (?=[\w(*-])")
CONDITION = re.compile(r"^(\s*(?:\} else )?if \()([^;]*)(\) \{)$")
# A call or an assignment alone on its line, in the body of a function.
INSTRUCTION = re.compile(r"^(    +)((?!return|const |auto |Trace|tracer|throw|break|continue|using|static)[\w.>\[\]()*-]+"
                         r"(?:\(.*\)|\)? [-+]?= [^;]*));$")
ECHEC = re.compile(r"^(\s+return )(NOX_CR_(?!OK\b)\w+)(;)$")


def mutants_de(ligne):
    """The changes that a line admits: what it does, and the line with the change behind its number."""
    for m in COMPARAISON.finditer(ligne):
        rang = list(OPERATEURS).index(m[1])
        yield (f"{m[1]} -> {OPERATEURS[m[1]]}",
               lambda n, m=m, rang=rang: ligne[:m.end(1)] + f" mutants::O{rang}<{n}>{{}} {m[1]}" + ligne[m.end(1):])
    if (m := CONDITION.match(ligne)):
        yield "condition false", lambda n, m=m: f"{m[1]}!mutants::actif({n}) && ({m[2]}){m[3]}"
        yield "condition true", lambda n, m=m: f"{m[1]}mutants::actif({n}) || ({m[2]}){m[3]}"
    if (m := INSTRUCTION.match(ligne)):
        yield "left out", lambda n, m=m: f"{m[1]}if (!mutants::actif({n})) {m[2]};"
    if (m := ECHEC.match(ligne)):
        yield "answers OK", lambda n, m=m: f"{m[1]}mutants::actif({n}) ? decltype({m[2]})(NOX_CR_OK) : {m[2]}{m[3]}"


def points(sources, dossiers):
    for dossier in dossiers:
        for chemin in sorted((sources / dossier).rglob("*.[ch]*")):
            lignes = chemin.read_text("utf-8").split("\n")
            for i, ligne in enumerate(lignes):
                if re.search(r"^\s*(//|#)|template|constexpr|static_assert|Trace::", ligne):
                    continue
                precedente = lignes[i - 1].rstrip() if i else ""
                entiere = precedente == "" or precedente[-1] in ";{}:" or precedente.lstrip().startswith("//")
                for quoi, appliquer in mutants_de(ligne):
                    if entiere or "->" in quoi:
                        yield chemin.relative_to(sources), i, quoi, appliquer


def poser(sources, arbre, tires):
    """The copy of the sources, with the changes drawn; at most one a line."""
    noms = subprocess.run(["git", "-C", sources, "ls-files", "-co", "--exclude-standard"], check=True,
                          capture_output=True, text=True).stdout.split()
    for nom in noms:
        if (sources / nom).is_file():
            (arbre / nom).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(sources / nom, arbre / nom)
    par_fichier = collections.defaultdict(list)
    for n, (chemin, ligne, _, appliquer) in enumerate(tires):
        par_fichier[chemin].append((ligne, appliquer(n)))
    for chemin, changements in par_fichier.items():
        lignes = (arbre / chemin).read_text("utf-8").split("\n")
        for ligne, texte in changements:
            lignes[ligne] = texte
        (arbre / chemin).write_text('#include "mutants.h"\n' + "\n".join(lignes), "utf-8")
    (arbre / "include/mutants.h").write_text(ENTETE)


def suites(construit):
    """The programs of the tests, the quickest first."""
    ordre = ["types", "basics", "zones", "regles", "facture", "referent", "bout_en_bout"]
    return [construit / f"test_{nom}" for nom in ordre if (construit / f"test_{nom}").exists()]


def lancer(programme, mutant, environnement):
    """The tests that fail with a change at work."""
    try:
        essai = subprocess.run([programme, "--gtest_brief=1"], capture_output=True, text=True, errors="replace",
                               env={**environnement, "NOXLUX_MUTANT": str(mutant)}, timeout=300)
    except subprocess.TimeoutExpired:
        return ["(does not end)"]
    vus = re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", essai.stdout, re.M)
    return sorted(set(vus)) or (["(stops)"] if essai.returncode else [])


def main():
    a = argparse.ArgumentParser()
    a.add_argument("sources", type=pathlib.Path)
    a.add_argument("travail", type=pathlib.Path)
    a.add_argument("--nombre", type=int, default=100)
    a.add_argument("--dossiers", nargs="+", default=["src/regles", "src/fichier", "src/referent", "src/interapp"])
    a.add_argument("--matrice", type=pathlib.Path)
    a.add_argument("--taches", default="2")
    options = a.parse_args()
    sources, arbre = options.sources.resolve(), options.travail.resolve() / "arbre"
    tous = list(points(sources, options.dossiers))
    random.Random(1).shuffle(tous)
    tires = list({(chemin, ligne): (chemin, ligne, quoi, appliquer)
                  for chemin, ligne, quoi, appliquer in tous}.values())[:options.nombre]
    poser(sources, arbre, tires)
    construit = options.travail.resolve() / "build"
    subprocess.run(["cmake", "-S", arbre, "-B", construit, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                    "-DCMAKE_CXX_FLAGS=-w", "-DCMAKE_CXX_FLAGS_DEBUG=-O1", "-DCMAKE_UNITY_BUILD=ON",
                    "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache", "-DNOXLUX_TESTS=ON", "-DNOXLUX_OUTILS=OFF"], check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", construit, "-j", options.taches], check=True)
    environnement = {**os.environ, "NOXLUX_SOURCES": str(arbre), "NOXLUX_BIBLIOTHEQUE": f"{construit}/libnoxlux.so"}
    for programme in suites(construit):
        if (echecs := lancer(programme, -1, environnement)):
            sys.exit(f"{programme.name} fails without any change: {echecs}")
    survivants = 0
    lignes = []
    for n, (chemin, ligne, quoi, _) in enumerate(tires):
        vus = []
        for programme in suites(construit):
            vus += [f"{programme.name}:{test}" for test in lancer(programme, n, environnement)]
            if vus and not options.matrice:
                break
        texte = (sources / chemin).read_text("utf-8").split("\n")[ligne].strip()
        lignes.append(f"{n}\t{chemin}:{ligne + 1}\t{quoi}\t{texte}\t{' '.join(vus)}")
        if not vus:
            survivants += 1
            print(f"survives: {chemin}:{ligne + 1}: {quoi}: {texte}", flush=True)
        if options.matrice:
            options.matrice.write_text("\n".join(lignes) + "\n")
    print(f"{len(tires)} changes out of {len(tous)} possible, {survivants} survive")


if __name__ == "__main__":
    main()
