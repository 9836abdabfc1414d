"""Zones: groups of fields, to and from bytes and Python values.

Values are those of the command's JSON: amounts in euros, rates and coefficients as ratios, dates "AAAA-MM-JJ", booleans.
A text that is no value of the field's type stands for the field's very bytes."""
from __future__ import annotations

import datetime
from typing import Any, Iterator, Mapping, NoReturn, Sequence

from ._description import Champ, Groupe
from ._noms import ENTREES, EQUIVALENCES, REPONSES
from .erreurs import ErreurBibliotheque, ErreurDemande

DECIMALES = {"N": 0, "M": 2, "X": 2, "F": 3}
_ZONE_MAL_FORMEE = 0xF810
# Whole numbers of answers have at least five digits.
_CHIFFRES_NOMBRE_REPONSE = 5


def refuser(chemin: str, raison: str) -> NoReturn:
    raise ErreurDemande(f"{chemin} : {raison}")


def date_compacte(texte: str) -> str | None:
    """The digits of AAAA-MM-JJ or JJ/MM/AAAA; None for another form."""
    if len(texte) == 10 and texte[4] == texte[7] == "-":
        return texte[:4] + texte[5:7] + texte[8:]
    if len(texte) == 10 and texte[2] == texte[5] == "/":
        return texte[6:] + texte[3:5] + texte[:2]
    return None


def est_du_calendrier(chiffres: str) -> bool:
    """Whether 8 digits, or 12 with the hour, are a day of the calendar.

    >>> est_du_calendrier("20240229"), est_du_calendrier("20230229")
    (True, False)
    """
    if not (chiffres.isascii() and chiffres.isdigit() and len(chiffres) in (8, 12)):
        return False
    annee, mois, jour = int(chiffres[:4]), int(chiffres[4:6]), int(chiffres[6:8])
    if not 1 <= mois <= 12:
        return False
    bissextile = annee % 4 == 0 and (annee % 100 != 0 or annee % 400 == 0)
    return 1 <= jour <= (29 if mois == 2 and bissextile else (31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31)[mois - 1])


def est_hors_calendrier(chiffres: str) -> bool:
    """Whether 8 digits have a month or a day that no calendar has: what is written for a day of birth that is not known.

    >>> est_hors_calendrier("19809999"), est_hors_calendrier("19800230")
    (True, False)
    """
    return chiffres.isascii() and chiffres.isdigit() and len(chiffres) == 8 and (
        int(chiffres[4:6]) > 12 or int(chiffres[6:]) > 31)


def chiffres_de(date: datetime.date | str | None) -> bytes:
    """A date as the functions take it; None is today.

    >>> chiffres_de("2026-01-15"), chiffres_de(datetime.date(2026, 1, 15))
    (b'20260115', b'20260115')
    """
    if date is None:
        date = datetime.date.today()
    texte = date.strftime("%Y%m%d") if isinstance(date, datetime.date) else date_compacte(date) or date
    if len(texte) != 8 or not est_du_calendrier(texte):
        raise ErreurDemande(f"« {date} » n'est pas une date AAAA-MM-JJ du calendrier")
    return texte.encode("ascii")


# --- bytes ---


def mesurer(octets: bytes) -> bytes:
    """Bytes behind their length."""
    n = len(octets)
    if n <= 127:
        return bytes((n,)) + octets
    taille = 1 if n < 0xFF else 2 if n < 0xFFFF else 3 if n < 0xFFFFFF else 4
    return bytes((0x80 + taille,)) + n.to_bytes(taille, "big") + octets


def emballer(numero: int, champs: Sequence[bytes]) -> bytes:
    return numero.to_bytes(2, "big") + mesurer(b"".join(map(mesurer, champs)))


def _mesures(zone: bytes, position: int, fin: int, entete: int) -> Iterator[tuple[int, int, int]]:
    """The measured pieces from a place to another, each behind `entete` bytes: (place of these, start, end)."""
    while position < fin:
        debut = position
        position += entete
        n = zone[position] if position < fin else 0x85
        position += 1
        if n > 0x84:
            raise ErreurBibliotheque(_ZONE_MAL_FORMEE)
        if n > 0x80:
            suite = position + n - 0x80
            n, position = int.from_bytes(zone[position:suite], "big"), suite
        if position + n > fin:
            raise ErreurBibliotheque(_ZONE_MAL_FORMEE)
        yield debut, position, position + n
        position += n


# --- values ---


def _encoder_nombre(champ: Champ, valeur: float, chemin: str, reponse: bool) -> bytes:
    apres_virgule = DECIMALES[champ.type]
    exactes = valeur * 10.0**apres_virgule
    if not -0.5 < exactes <= 999999999.5:
        refuser(chemin, "un nombre de 0 à 9 chiffres est attendu")
    unites = int(exactes + 0.5) if exactes > 0 else 0
    if unites > 999999999:
        refuser(chemin, "un nombre de 0 à 9 chiffres est attendu")
    if abs(exactes - unites) > 1e-4:
        refuser(chemin, f"trop de décimales ({apres_virgule} au plus)")
    largeur = _CHIFFRES_NOMBRE_REPONSE if champ.type == "N" and reponse else apres_virgule + 1
    return b"%0*d" % (largeur, unites)


def encoder_champ(champ: Champ, valeur: Any, chemin: str, reponse: bool = False) -> bytes:
    if valeur is None:
        return b""
    if isinstance(valeur, bool):
        return b"O" if valeur else b"N"
    if isinstance(valeur, (int, float)):
        if champ.type not in DECIMALES:
            refuser(chemin, "un texte est attendu, pas un nombre")
        return _encoder_nombre(champ, valeur, chemin, reponse)
    if isinstance(valeur, datetime.date):
        valeur = valeur.isoformat()[:10]
    if not isinstance(valeur, str):
        refuser(chemin, "un texte, un nombre ou un booléen est attendu")
    if champ.type == "D":
        chiffres = date_compacte(valeur)
        if chiffres is not None:
            valeur = chiffres + ("0000" if reponse else "")
    return latin1(valeur, chemin)


def latin1(texte: str, chemin: str) -> bytes:
    """ISO-8859-1 bytes; typographic characters get their plain equivalent.

    >>> latin1("l’œil", "$")
    b"l'oeil"
    """
    if texte.isascii():
        return texte.encode("ascii")
    converti = texte.translate(EQUIVALENCES)
    for caractere in converti:
        if caractere > "\xff" or "\x80" <= caractere < "\xa0":
            refuser(chemin, f"caractère hors ISO-8859-1 : {caractere}")
    return converti.encode("latin-1")


def decoder_champ(champ: Champ, octets: bytes) -> Any:
    """The typed reading, where writing it back gives the same bytes; otherwise the text."""
    if champ.type in DECIMALES and octets.isdigit() and len(octets) <= 9:
        entier, decimales = int(octets), DECIMALES[champ.type]
        valeur = entier / 10**decimales if decimales else entier
        if _encoder_nombre(champ, valeur, "$", True) == octets:
            return valeur
    elif champ.type == "B" and octets in (b"O", b"N"):
        return octets == b"O"
    elif champ.type == "D" and octets.isdigit() and len(octets) == 12 and octets.endswith(b"0000"):
        texte = octets.decode("ascii")
        return f"{texte[:4]}-{texte[4:6]}-{texte[6:8]}"
    return octets.decode("latin-1")


def encoder_groupe(groupe: Groupe, valeurs: Mapping[str, Any], chemin: str) -> bytes:
    """A group by the names of its fields; a field that is not given is empty."""
    return emballer(groupe.numero, [encoder_champ(c, valeurs.get(c.nom), f"{chemin}.{c.nom}") for c in groupe.champs])


def decoder_zone(zone: bytes) -> list[dict[str, Any]]:
    """The groups of an answer, as the command's JSON tells them: {"groupe": 3117, "nom": "montant", "champs": {...}}."""
    groupes = []
    for place, debut, fin in _mesures(zone, 0, len(zone), 2):
        numero = int.from_bytes(zone[place : place + 2], "big")
        groupe = REPONSES.get(numero) or ENTREES.get(numero)
        decrits = groupe.champs if groupe else ()
        suite = decrits[-1] if decrits and decrits[-1].repete else None
        champs: dict[str, Any] = {suite.nom: []} if suite else {}
        for rang, (_, d, f) in enumerate(_mesures(zone, debut, fin, 0)):
            champ = decrits[rang] if rang < len(decrits) else suite
            if champ is None:
                champs[f"champ{rang + 1}"] = zone[d:f].decode("latin-1")
            elif champ.repete:
                champs[champ.nom].append(decoder_champ(champ, zone[d:f]))
            else:
                champs[champ.nom] = decoder_champ(champ, zone[d:f])
        element: dict[str, Any] = {"groupe": numero}
        if groupe:
            element["nom"] = groupe.nom
        groupes.append(element | {"champs": champs})
    return groupes
