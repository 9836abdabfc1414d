#!/usr/bin/env python3
"""Writes docs/zones.md from the zone descriptions of the socle.

    docs/generer_zones.py              writes it
    docs/generer_zones.py --verifier   fails when it is not what would be written
"""

import sys
import tomllib
from pathlib import Path

DOCS = Path(__file__).resolve().parent
SOURCE = DOCS.parent / "reference" / "socle" / "zones.toml"
CIBLE = DOCS / "zones.md"

FAMILLES = {
    "consultation": ("Consultations", "`NOX_ConsulterDonnee`, at a reference date."),
    "modification": ("Modifications", "`NOX_ModifierDonnee`, from an effect date on. No answer zone."),
    "annulation": ("Cancellations", "`NOX_AnnulerModification`. No answer zone."),
    "controle": ("Data controls", "`NOX_ControlerDonnees`, at a reference date. The answer is one character, O or N."),
    "regle": ("Single rules", "`NOX_AppliquerRegle`."),
    "controle_complet": ("Full check of an invoice",
                         "`NOX_ControleComplet`, without identifier. Groups that are not expected at their place are "
                         "read over."),
}
FORMATS = {"A": "capitals, digits, spaces", "N": "digits", "D": "date", "E": "free text", "I": "anything"}
TYPES = {"C": "code", "T": "text", "B": "O or N", "D": "date", "N": "number", "M": "amount, 2 decimals",
         "F": "coefficient, 3 decimals", "X": "rate, 2 decimals", "P": "period", "A": "read over"}

INTRODUCTION = """\
# Data zones of every function

Generated from `reference/socle/zones.toml` by `docs/generer_zones.py`; do not edit.

A request and its answer are zones: groups of fields, laid out as [formats.md](formats.md) tells. Groups follow one
another in the order shown. "1" is a group that must be there, "0-1" one that may, "0-n" any number of them.
Indented groups belong to the group above them and follow it each time it comes.

Fields have no names in a zone, only places; the names below are those that the `noxlux` command uses. Decimal values
are written as digits without a point: 12.50 with 2 decimals is `1250`. Dates are `AAAAMMJJ` or `AAAAMMJJ0000`.

A refusal tells the place of the group or field at fault, counted from 1 over the whole zone and added to the code of
its family; places too far for their family have its last code (0x9FFF for a field, 0xA7FF or 0xAFFF for a group).
"""


def bornes(minimum, maximum):
    """From one to the other; a maximum of 0 is no bound."""
    return str(minimum) if minimum == maximum != 0 else f"{minimum}-{maximum or 'n'}"


def lien(numero):
    return f"[{numero}](#groupe-{numero})"


class Zones:
    def __init__(self, description):
        self.fonctions = description["fonction"]
        self.groupes = {groupe["numero"]: groupe for groupe in description["groupe"]}
        self.reponses = {groupe["numero"]: groupe for groupe in description["groupe_reponse"]}
        self.super_groupes = {groupe["nom"]: groupe for groupe in description["super_groupe"]}

    def en_ligne(self, fils, groupes):
        """The groups of a simple zone, in one cell of a table."""
        return ", ".join(f"{lien(f['groupe'])} {groupes[f['groupe']]['nom']}"
                         + ("" if f["min"] == f["max"] == 1 else f" ({bornes(f['min'], f['max'])})") for f in fils) or "none"

    def en_arbre(self, fils, niveau=0):
        """The groups of a nested zone, one line each. A super-group shows as its first group, over the others."""
        for f in fils:
            if "groupe" in f:
                nom = self.groupes[f["groupe"]]["nom"]
                yield f"{'  ' * niveau}- {lien(f['groupe'])} {nom}: {bornes(f['min'], f['max'])}"
            else:
                tete, *suite = self.super_groupes[f["super_groupe"]]["fils"]
                yield from self.en_arbre([tete | {"min": f["min"], "max": f["max"]}], niveau)
                yield from self.en_arbre(suite, niveau + 1)

    def tableau(self, fonctions, colonne_reponse):
        yield "| Identifier | Number | Answers | Input groups |" + (" Answer groups |" if colonne_reponse else "")
        yield "|---|---|---|---|" + ("---|" if colonne_reponse else "")
        for fonction in fonctions:
            ligne = f"| `{fonction['nom']}` | {fonction['numero']} | {fonction['libelle']}"
            ligne += f". {fonction['note']}" if "note" in fonction else ""
            ligne += f" | {self.en_ligne(fonction.get('fils', []), self.groupes)} |"
            if colonne_reponse:
                ligne += f" {self.en_ligne(fonction['reponse'], self.reponses)} |"
            yield ligne

    def fiches(self, fonctions):
        for fonction in fonctions:
            yield f"### `{fonction['nom']}` ({fonction['numero']})\n"
            yield f"{fonction['libelle']}." + (f" {fonction['note']}" if "note" in fonction else "") + "\n"
            yield "Input:\n"
            yield from self.en_arbre(fonction["fils"])
            yield f"\nAnswer: {self.en_ligne(fonction['reponse'], self.reponses)}.\n"

    def famille(self, nom):
        titre, appel = FAMILLES[nom]
        fonctions = [fonction for fonction in self.fonctions if fonction["famille"] == nom]
        yield f"## {titre}\n"
        yield f"{appel}\n"
        imbriquee = any("super_groupe" in fils for fonction in fonctions for fils in fonction.get("fils", []))
        if imbriquee:
            yield from self.fiches(fonctions)
        else:
            yield from self.tableau(fonctions, any("reponse" in fonction for fonction in fonctions))
            yield ""

    def groupe(self, groupe, entree):
        yield f"### <a id=\"groupe-{groupe['numero']}\"></a>{groupe['numero']} {groupe['nom']}\n"
        yield "| | Field | Holds | Type |" + (" Format | Size |" if entree else "")
        yield "|---|---|---|---|" + ("---|---|" if entree else "")
        for rang, champ in enumerate(groupe["champs"], 1):
            ligne = f"| {rang} | `{champ['nom']}`{', repeated' if champ.get('repete') else ''} | {champ['libelle']}"
            if champ.get("valeurs"):
                ligne += f" ({', '.join(champ['valeurs'])})"
            ligne += f" | {TYPES[champ['type']]} |"
            if entree:
                ligne += f" {FORMATS[champ['format']]} | {bornes(champ.get('min', 0), champ.get('max', 0))} |"
            yield ligne
        yield ""

    def document(self):
        yield INTRODUCTION
        for nom in FAMILLES:
            yield from self.famille(nom)
        for titre, groupes, entree in (("Input groups", self.groupes, True), ("Answer groups", self.reponses, False)):
            yield f"## {titre}\n"
            for _, groupe in sorted(groupes.items()):
                yield from self.groupe(groupe, entree)


def main(arguments):
    if arguments not in ([], ["--verifier"]):
        print(__doc__, file=sys.stderr)
        return 2
    with SOURCE.open("rb") as fichier:
        texte = "\n".join(Zones(tomllib.load(fichier)).document()).rstrip() + "\n"
    if arguments:
        if not CIBLE.exists() or CIBLE.read_text(encoding="utf-8") != texte:
            print(f"{CIBLE} is out of date: run {Path(__file__).name}", file=sys.stderr)
            return 1
        return 0
    CIBLE.write_text(texte, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
