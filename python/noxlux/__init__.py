"""CCAM reference data and invoice checking: `libnoxlux.so` for Python.

    from noxlux import Reference

    with Reference("/var/lib/noxlux") as reference:
        print(reference.acte("HHFA001").prix("2026-01-15"))
        resultat = reference.controler(facture)
        for erreur in resultat.erreurs:
            print(erreur.reference, erreur.libelle)

Fields bear the names of docs/zones.md. Amounts are in euros, rates and coefficients are ratios, dates are "AAAA-MM-JJ" or
datetime.date. Nothing but the standard library and libnoxlux.so is needed; `to_dataframe` needs pandas, `noxlux.distribue`
needs Dask's distributed scheduler."""
from .erreurs import Erreur, ErreurBibliotheque, ErreurDemande
from .reference import Acte, Reference, Reponse
from .resultats import ErreurFacture, Forcage, LigneCalculee, Resultat, to_dataframe

__version__ = "1.13.0"
__all__ = ["Acte", "Erreur", "ErreurBibliotheque", "ErreurDemande", "ErreurFacture", "Forcage", "LigneCalculee", "Reference",
           "Reponse", "Resultat", "to_dataframe"]
