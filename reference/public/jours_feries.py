#!/usr/bin/env python3
"""The holidays of jours_feries.csv, from their rules.

Usage: jours_feries.py [--verifier]    write the table to the standard output, or compare it with the file beside
"""
import datetime
import pathlib
import sys

FICHIER = pathlib.Path(__file__).with_name("jours_feries.csv")
ANNEES = range(2020, 2041)
ALSACE_MOSELLE = "571 572 573 671 672 673 681 682"
# Name, funds, and either a day of the year or a number of days after Easter.
REGLES = [
    ("Jour de l'an", "000", (1, 1)),
    ("Vendredi saint", ALSACE_MOSELLE, -2),
    ("Lundi de Pâques", "000", 1),
    ("Fête du travail", "000", (5, 1)),
    ("Victoire de 1945", "000", (5, 8)),
    ("Ascension", "000", 39),
    ("Lundi de Pentecôte", "000", 50),
    ("Abolition de l'esclavage en Martinique", "972", (5, 22)),
    ("Abolition de l'esclavage en Guadeloupe", "971", (5, 27)),
    ("Abolition de l'esclavage en Guyane", "973", (6, 10)),
    ("Fête nationale", "000", (7, 14)),
    ("Assomption", "000", (8, 15)),
    ("Toussaint", "000", (11, 1)),
    ("Armistice de 1918", "000", (11, 11)),
    ("Abolition de l'esclavage à La Réunion", "974", (12, 20)),
    ("Noël", "000", (12, 25)),
    ("Saint-Étienne", ALSACE_MOSELLE, (12, 26)),
]
TITRE = """\
# table : jour_ferie
# source : Code du travail, art. L. 3133-1, L. 3134-13 et L. 3422-2 ; Base publique de la CCAM, version 37, table TB08
# vérifié le : 2026-11-21
# Jours fériés de 2020 à 2040, calculés par jours_feries.py.
jour;debut;caisses;nom
"""


def paques(annee):
    """Easter Sunday in the Gregorian calendar."""
    siecle, rang = divmod(annee, 100)
    epacte = (19 * (annee % 19) + siecle - siecle // 4 - (siecle - (siecle + 8) // 25 + 1) // 3 + 15) % 30
    dimanche = (32 + 2 * (siecle % 4) + 2 * (rang // 4) - epacte - rang % 4) % 7
    retard = (annee % 19 + 11 * epacte + 22 * dimanche) // 451
    mois, jour = divmod(epacte + dimanche - 7 * retard + 114, 31)
    return datetime.date(annee, mois, jour + 1)


def table():
    lignes = []
    for annee in ANNEES:
        for nom, caisses, quand in REGLES:
            jour = (datetime.date(annee, *quand) if isinstance(quand, tuple)
                    else paques(annee) + datetime.timedelta(quand))
            lignes.append((jour, f"{jour};{annee}-01-01;{caisses};{nom}\n"))
    return TITRE + "".join(ligne for _, ligne in sorted(lignes, key=lambda ligne: ligne[0]))


if sys.argv[1:] == ["--verifier"]:
    sys.exit(0 if FICHIER.read_text(encoding="utf-8") == table() else f"{FICHIER} n'est pas ce que ses règles donnent")
sys.stdout.write(table())
