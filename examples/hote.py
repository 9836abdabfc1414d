#!/usr/bin/env python3
"""A host program in Python: the price of an act, the check of an invoice, a change that is saved.

Usage: hote.py CONFIGURATION_DIRECTORY, that of an orvan.ini."""
import sys

from noxlux import Reference

PHASE = {"acte": "HHFA001", "activite": "1", "phase": "0"}
JOUR = "2026-01-15"


def facture(prix):
    ligne = PHASE | {"date": JOUR, "lieuExecution": "1", "prestation": "ADC", "exonerationTM": "C", "tauxRemboursement": 1.0,
                     "prixUnitaire": prix, "baseRemboursement": prix, "baseTheoriqueAMO": prix}
    return {"professionnel": {"numeroPS": "75123456", "cleNumeroPS": "7", "conventionPS": "1", "specialitePS": "04"},
            "beneficiaire": {"dateNaissance": "1980-05-17"}, "natureAssurance": "AS", "lignes": [ligne], "caissePS": "751"}


with Reference(configuration=sys.argv[1]) as reference:
    ancien = reference.acte("HHFA001").prix(JOUR)
    print(f"HHFA001 le {JOUR} : {ancien:.2f} euros, facture {reference.controler(facture(ancien)).verdict}")
    reference.modifier("CCAM_37", "2026-01-01", **PHASE, montant=205.00)
    resultat = reference.controler(facture(ancien))
    for erreur in resultat.erreurs:
        print(f"prix changé : facture {resultat.verdict}, {erreur.reference} ({erreur.niveau}) {erreur.libelle}")
    reference.sauvegarder("Prix de février")

# The change is there again when the library is loaded anew.
with Reference(configuration=sys.argv[1]) as reference:
    print(f"HHFA001 relu : {reference.acte('HHFA001').prix(JOUR):.2f} euros, au lieu de {ancien:.2f}")
