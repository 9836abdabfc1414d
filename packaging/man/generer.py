#!/usr/bin/env python3
"""Makes the manual pages from where each thing is said once: options and their French from the command itself, their English and
what the pages tell besides from commande.toml, functions and codes from the public header, zones from the socle, files from
docs/formats.md and *.scd.

    generer.py COMMAND DIRECTORY    writes the pages with scdoc
    generer.py COMMAND --verifier   only checks: an option without English or English without option, a return code that the header
                                    does not have, an exit status or a key of orvan.ini that the sources do not have, or have more
"""
import re
import subprocess
import sys
import tomllib
from pathlib import Path

ICI = Path(__file__).resolve().parent
SOURCES = ICI.parent.parent
LIRE = {"encoding": "utf-8"}
ENTETE = (SOURCES / "include/noxlux/noxlux.h").read_text(**LIRE)
VERSION = re.search(r'NOXLUX_VERSION_TEXTE "(.*)"', ENTETE).group(1)
fautes = []


def lire_toml(chemin):
    with chemin.open("rb") as fichier:
        return tomllib.load(fichier)


def brut(texte):
    """A text without markup."""
    return re.sub(r"([\\_*#~`])", r"\\\1", texte)


def page(nom, section, resume, corps, synopsis=None):
    texte = f'{nom}({section}) "noxlux {VERSION}" "noxlux"\n\n# NAME\n\n{nom} - {brut(resume)}\n\n'
    return texte + (f"# SYNOPSIS\n\n{synopsis}\n\n" if synopsis else "") + corps.strip() + "\n"


# --- The command ---

TITRES = {"en": {"# NOM": "# NAME"}, "fr": {"# NAME": "# NOM", "# EXAMPLES": "# EXEMPLES", "# EXIT STATUS": "# CODE DE RETOUR",
                                           "# SEE ALSO": "# VOIR AUSSI", "# COMMANDS": "# COMMANDES"}}


class Aide:
    """What `noxlux SUBCOMMAND --help` tells: a sentence, and its entries, arguments and options, in French."""

    def __init__(self, commande, chemin):
        texte = subprocess.run([commande, *chemin, "--help"], check=True, capture_output=True, text=True).stdout
        lignes = texte.splitlines()
        self.resume, self.arguments, self.options, self.sous = lignes[0].rstrip("."), {}, {}, {}
        courant = nom = None
        for ligne in lignes[1:]:
            if ligne.startswith("Usage:"):
                self.usage = re.sub(r"^Usage: ", "", ligne)
            elif re.match(r"\S.*:$", ligne):
                courant = {"Arguments": self.arguments, "Options": self.options}.get(ligne[:-1], self.sous)
            elif courant is not None and re.match(r"  \S", ligne):
                debut, _, suite = ligne.strip().partition("  ")
                nom = debut if courant is not self.sous else debut.split(",")[0]  # a command may have a second name
                courant[nom] = suite.strip()
            elif courant is not None and ligne.strip():
                courant[nom] = f"{courant[nom]} {ligne.strip()}".strip()


class AidePython:
    """The same of noxlux-distribue, from its own description."""

    def __init__(self):
        sys.path.insert(0, str(SOURCES / "python"))
        sys.dont_write_bytecode = True
        from noxlux.__main__ import lecteur_d_options
        lecteur = lecteur_d_options()
        self.resume, self.arguments, self.options, self.sous = lecteur.description.rstrip("."), {}, {}, {}
        self.usage = "noxlux-distribue [OPTIONS] " + " ".join(a.metavar + "..." for a in lecteur._actions if not a.option_strings)
        for action in lecteur._actions:
            noms = ", ".join(action.option_strings)
            if noms:
                self.options[f"{noms} {action.metavar or ''}".strip()] = action.help
            else:
                self.arguments[f"{action.dest} {action.metavar}..."] = action.help


def cle(entree):
    """The name that an entry goes by: its long option, or its argument."""
    longue = re.search(r"--[\w-]+", entree)
    return longue.group() if longue else entree.split()[0]


def entree_fr(entree):
    return re.sub(r" (Sans|Avec): .*", "", entree)


def pages_commande(commande):
    anglais = lire_toml(ICI / "commande.toml")
    vues = set()
    pages = {}

    def parcourir(chemin):
        nom = "-".join(["noxlux", *chemin])
        aide = AidePython() if chemin == ["distribue"] else Aide(commande, chemin)
        dit = anglais.get(nom)
        if dit is None:
            fautes.append(f"{nom} has no page in commande.toml")
            dit = {"resume": "", "texte": ""}
        vues.add(nom)
        propres = dit.get("options", {})
        communes = anglais["communes"]
        for langue in ("en", "fr"):
            corps = "# DESCRIPTION\n\n" + (dit["texte"] if langue == "en" else aide.resume + ".\n" + dit.get("texte_fr", "")) + "\n\n"
            for titre, entrees in (("ARGUMENTS", aide.arguments), ("OPTIONS", aide.options)):
                if not entrees:
                    continue
                corps += f"# {titre}\n\n"
                for entree, francais in entrees.items():
                    texte = propres.get(cle(entree), communes.get(cle(entree)))
                    if texte is None and langue == "en":
                        fautes.append(f"{nom} {cle(entree)} has no English line in commande.toml")
                    corps += f"*{brut(entree_fr(entree))}*\n\t{brut(francais if langue == 'fr' else texte or '')}\n\n"
            if aide.sous:
                corps += "# COMMANDS\n\n" + "".join(
                    f"*{nom}-{sous}*(1)\n\t{brut(texte if langue == 'fr' else anglais.get(f'{nom}-{sous}', {}).get('resume', ''))}\n\n"
                    for sous, texte in aide.sous.items())
            if "exemples" in dit:
                corps += "# EXAMPLES\n\n```\n" + dit["exemples"].strip() + "\n```\n\n"
            corps += "# EXIT STATUS\n\n" + "".join(
                f"*{statut}*\n\t{brut(texte)}\n\n" for statut, texte in anglais["statuts"][langue].items())
            corps += "# SEE ALSO\n\n" + ("*libnoxlux*(3), *noxlux-zones*(7), *orvan.ini*(5)" if not chemin else "*noxlux*(1)")
            resume = dit["resume"] if langue == "en" else aide.resume[0].lower() + aide.resume[1:]
            texte = page(nom, 1, resume, corps, brut(re.sub(r"^noxlux", "noxlux", aide.usage)))
            for ancien, nouveau in TITRES[langue].items():
                texte = texte.replace(ancien + "\n", nouveau + "\n")
            pages[("fr/" if langue == "fr" else "") + f"man1/{nom}.1"] = texte
        connues = {cle(e) for e in [*aide.arguments, *aide.options]}
        fautes.extend(f"commande.toml: {nom} has no {option}" for option in propres if option not in connues)
        toutes.update(connues)
        for sous in aide.sous:
            parcourir([*chemin, sous])

    toutes = set()
    parcourir([])
    parcourir(["distribue"])
    fautes.extend(f"commande.toml: no command has {option}" for option in anglais["communes"] if option not in toutes)
    fautes.extend(f"commande.toml: there is no {nom}" for nom in anglais if nom.startswith("noxlux") and nom not in vues)
    sources = "".join(f.read_text(**LIRE) for f in (SOURCES / "outils/noxlux").glob("*.h"))
    statuts = set(re.findall(r"STATUT_\w+ = (\d)", sources))
    fautes.extend(f"exit status {s}: in the sources or in commande.toml, not in both"
                  for langue in ("en", "fr") for s in statuts ^ set(anglais["statuts"][langue]))
    return pages


# --- The library ---

FAMILLES = {"NOX_InitLIB": "load and unload the library", "NOX_ConsulterDonnee": "ask the reference a question",
            "NOX_ModifierDonnee": "change values, take changes back, save them", "NOX_ControlerDonnees": "check one datum",
            "NOX_AppliquerRegle": "apply one rule", "NOX_ControleComplet": "check a whole invoice",
            "NOX_RechercherParMotCle": "search acts", "NOX_LireVersion": "versions", "NOX_InitTrace": "trace",
            "NOX_AllouerZoneMem": "memory of zones", "KEP_LireZoneIn": "zones kept by a session manager"}


def commentaire(texte):
    """A comment of the header as paragraphs."""
    lignes = [re.sub(r"^ ?\* ?", "", ligne) for ligne in re.sub(r"^/\*\s?|\s*\*/$", "", texte.strip()).splitlines()]
    corps, marge = "", ""
    for ligne in lignes:
        argument = re.match(r"  +(\w+(?:, \w+)*)  +(.*)", ligne)
        if argument:
            corps, marge = corps + f"\n*{argument[1]}*\n\t{brut(argument[2])}\n", "\t"
        elif re.match(r"\s*- ", ligne):
            corps, marge = corps + f"- {brut(ligne.strip()[2:])}\n", "  "
        elif marge and ligne.startswith("  "):
            corps += f"{marge}{brut(ligne.strip())}\n"
        else:
            # What follows a list, and the codes, begin a paragraph.
            neuf = marge or re.match(r"(Codes|Answer):", ligne)
            corps, marge = corps + ("\n" if neuf else "") + brut(ligne.strip()) + "\n", ""
    return corps


def pages_bibliotheque():
    pages = {}
    declarations = re.findall(r"(/\*(?:(?!\*/).)*\*/)\n((?:(?:extern )?NOX_API [^;]*;\n?)+)", ENTETE, re.S)
    famille = None
    for texte, code in declarations:
        noms = re.findall(r"\b((?:NOX|KEP)_[A-Z]\w+)\(", code)
        if not noms:
            systeme = commentaire(texte)
            continue
        if noms[0] in FAMILLES:
            famille = noms[0]
            pages[famille] = ["", "", []]
        if famille is None:
            fautes.append(f"{noms[0]} belongs to no page")
            continue
        pages[famille][0] += re.sub(r"NOX_API ", "", code) + "\n"
        pages[famille][1] += "".join(f"*{brut(n)}*()" + (", " if n != noms[-1] else "") for n in noms) + "\n\n" + commentaire(texte) + "\n"
        pages[famille][2] += noms
    fautes.extend(f"{nom}: declared by the header? no page was made" for nom in FAMILLES if nom not in pages)
    declarees = set(re.findall(r"^NOX_API [\w ]+ ((?:NOX|KEP)_\w+)\(", ENTETE, re.M))
    fautes.extend(f"{nom} has no manual page" for nom in declarees - {n for p in pages.values() for n in p[2]})

    resultat = {}
    for nom, (prototypes, corps, fonctions) in pages.items():
        synopsis = f"```\n#include <noxlux/noxlux.h>\n\n{prototypes.strip()}\n```"
        resultat[f"man3/{nom}.3"] = page(nom, 3, FAMILLES[nom], "# DESCRIPTION\n\n" + corps + "# SEE ALSO\n\n*libnoxlux*(3), *noxlux-zones*(7)",
                                        synopsis)
        for autre in fonctions[1:]:
            resultat[f"man3/{autre}.3"] = f".so man3/{nom}.3\n"
    codes = re.search(r"enum NOX_CodeRetour \{(.*?)\};", ENTETE, re.S)[1]
    liste = ""
    for ligne in codes.strip().splitlines():
        titre, code = re.match(r"\s*/\* (.*?)(?: \*/)?$", ligne), re.match(r"\s*(NOX_CR_\w+) = (0x\w{4}),?\s*(?:/\* (.*) \*/)?", ligne)
        if code:
            liste += f"*{brut(code[1])}* ({code[2]})\n\t{brut(code[3] or 'success')}\n\n"
        elif titre:
            liste += brut(titre[1].split(";")[0].rstrip(".")) + ":\n\n"
    conventions = re.search(r"/\*\n \* noxlux\.h - (.*?)\n(.*?)\*/", ENTETE, re.S)
    fonctions = ", ".join(f"*{brut(nom)}*(3)" for nom in pages)
    resultat["man3/libnoxlux.3"] = page(
        "libnoxlux", 3, "CCAM reference data and invoice checking",
        "# DESCRIPTION\n\n" + commentaire(conventions[2].replace(" * Conventions\n", "").replace("\n *   ", "\n * "))
        + "\n# FUNCTIONS\n\n" + fonctions + "\n\n*REPERTOIRE\\_SYSTEME*\n\n" + systeme + "\n# RETURN CODES\n\n" + liste
        + "# SEE ALSO\n\n*noxlux*(1), *orvan.ini*(5), *noxlux-zones*(7)", "```\n#include <noxlux/noxlux.h>\n\ncc ... -lnoxlux\n```")
    return resultat


# --- Zones and files ---

FAMILLES_ZONES = {"consultation": "CONSULTATIONS", "modification": "MODIFICATIONS", "annulation": "CANCELLATIONS",
                  "controle": "DATA CONTROLS", "regle": "SINGLE RULES", "controle_complet": "FULL CHECK"}
TYPES = {"C": "code", "T": "text", "B": "O or N", "D": "date", "N": "number", "M": "amount, 2 decimals", "F": "coefficient, 3 decimals",
         "X": "rate, 2 decimals", "P": "period", "A": "read over"}


def page_zones():
    zones = lire_toml(SOURCES / "reference/socle/zones.toml")
    supers = {s["nom"]: s for s in zones["super_groupe"]}

    def liste(fils):
        return ", ".join(str(f["groupe"]) + ("" if f["min"] == f["max"] == 1 else "?" if f["max"] == 1 else "...") if "groupe" in f
                         else "(" + liste(supers[f["super_groupe"]]["fils"]) + ")..." for f in fils) or "none"

    corps = ("# DESCRIPTION\n\nWhat each function of *libnoxlux*(3) reads and answers: groups by their numbers, then the fields of each group "
             "in their order. \"?\" is a group that may be left out, \"...\" one that may come any number of times. Labels are those that the "
             "library's users read.\n\n")
    for famille, titre in FAMILLES_ZONES.items():
        corps += f"# {titre}\n\n"
        for f in (f for f in zones["fonction"] if f["famille"] == famille):
            corps += f"*{brut(f['nom'])}*\n\t{brut(f['libelle'])}. In: {liste(f.get('fils', []))}"
            corps += f"; out: {liste(f['reponse'])}\n\n" if "reponse" in f else "\n\n"
    for titre, cle_groupes in (("INPUT GROUPS", "groupe"), ("ANSWER GROUPS", "groupe_reponse")):
        corps += f"# {titre}\n\n"
        for g in sorted(zones[cle_groupes], key=lambda g: g["numero"]):
            champs = ", ".join(f"_{brut(c['nom'])}_ ({TYPES[c['type']]})" + ("..." if c.get("repete") else "") for c in g["champs"])
            corps += f"*{g['numero']} {brut(g['nom'])}*\n\t{champs}\n\n"
    return page("noxlux-zones", 7, "data zones of every function", corps + "# SEE ALSO\n\n*libnoxlux*(3), *tablebin.nox*(5)")


def depuis_markdown(texte):
    """The little Markdown of docs/formats.md."""
    def en_ligne(t):
        return "".join(f"*{brut(m[1:-1])}*" if m.startswith("`") else brut(re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", m))
                       for m in re.split(r"(`[^`]*`)", t))

    corps, tableau = "", False
    for ligne in texte.strip().splitlines():
        if ligne.startswith("|"):
            cellules = [c.strip() for c in re.split(r"(?<!\\)\|", ligne.strip("|"))]
            if set("".join(cellules)) <= set("-: "):
                continue
            corps += ("|" if tableau else "[") + "[ " + "\n:[ ".join(en_ligne(c) or "-" for c in cellules) + "\n"
            tableau = True
            continue
        tableau = False
        corps += f"# {brut(ligne.lstrip('# ').upper())}\n" if ligne.startswith("#") else en_ligne(ligne) + "\n"
    return corps


def pages_fichiers():
    formats = dict(re.findall(r"^## `?([^`\n]*)`?\n(.*?)(?=^## |\Z)", (SOURCES / "docs/formats.md").read_text(**LIRE), re.M | re.S))
    pages = {}
    for nom, resume in (("tablebin.nox", "compiled reference data of noxlux"), ("modifref.nox", "local modifications of the reference data of noxlux")):
        corps = "# DESCRIPTION\n\nAll multi-byte integers are big-endian; texts are ISO-8859-1.\n\n" + depuis_markdown(formats[nom])
        autre = "modifref.nox" if nom == "tablebin.nox" else "tablebin.nox"
        pages[f"man5/{nom}.5"] = page(nom, 5, resume, corps + f"\n# SEE ALSO\n\n*{autre}*(5), *noxlux*(1), *libnoxlux*(3)")
    ini = (ICI / "orvan.ini.scd").read_text(**LIRE)
    pages["man5/orvan.ini.5"] = page("orvan.ini", 5, "configuration of the library libnoxlux", ini)
    sources = "".join(f.read_text(**LIRE) for f in (SOURCES / "src").rglob("*.cpp"))
    lues = set(re.findall(r'lireValeur\("(?:NOX|COMMUN)", "(\w+)"\)', sources))
    dites = set(re.findall(r"^\*(\w+)\*=", ini, re.M))
    fautes.extend(f"orvan.ini: {c} is read by the library or told by the page, not both" for c in lues ^ dites)
    return pages


def verifier_codes(pages):
    valeurs = {int(v, 16) for v in re.findall(r"NOX_CR_\w+ = (0x\w{4})", ENTETE)}
    for nom, texte in pages.items():
        if "man5/tablebin" in nom or "man5/modifref" in nom:
            continue  # other hexadecimal numbers
        for code in re.findall(r"\b0x[0-9A-F]{4}\b", texte):
            if int(code, 16) not in valeurs:
                fautes.append(f"{nom}: no return code {code}")
    for code in valeurs:
        if f"0x{code:04X}" not in pages["man3/libnoxlux.3"]:
            fautes.append(f"libnoxlux.3 does not tell 0x{code:04X}")


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    commande, sortie = arguments
    pages = pages_commande(commande) | pages_bibliotheque() | pages_fichiers() | {"man7/noxlux-zones.7": page_zones()}
    verifier_codes(pages)
    for faute in fautes:
        print(faute, file=sys.stderr)
    if fautes or sortie == "--verifier":
        return int(bool(fautes))
    for nom, texte in pages.items():
        chemin = Path(sortie) / nom
        chemin.parent.mkdir(parents=True, exist_ok=True)
        if not texte.startswith(".so"):
            fait = subprocess.run(["scdoc"], input=texte.encode(), capture_output=True)
            if fait.returncode:
                print(f"{nom}: {fait.stderr.decode()}", file=sys.stderr)
                return 1
            texte = fait.stdout.decode()
        chemin.write_text(texte, **LIRE)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
