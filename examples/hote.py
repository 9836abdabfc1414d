#!/usr/bin/env python3
"""A host program in Python: the price of an act, the check of an invoice, a change that is saved.

Usage: hote.py LIBRARY CONFIGURATION_DIRECTORY, the directory being that of an orvan.ini."""
import ctypes
import sys


def longueur(n):
    """The length encoding of zones."""
    if n <= 127:
        return bytes([n])
    octets = n.to_bytes(1 if n < 0xFF else 2 if n < 0xFFFF else 3 if n < 0xFFFFFF else 4, "big")
    return bytes([0x80 + len(octets)]) + octets


def groupe(numero, *champs):
    contenu = b"".join(longueur(len(c)) + c for c in (champ.encode("latin-1") for champ in champs))
    return numero.to_bytes(2, "big") + longueur(len(contenu)) + contenu


def groupes(zone):
    """The groups of a zone: (number, [fields])."""
    def lire(position):
        n = zone[position]
        suite = n - 0x80 if n > 0x80 else 0
        return (int.from_bytes(zone[position + 1:position + 1 + suite], "big") if suite else n), position + 1 + suite

    position = 0
    while position < len(zone):
        numero = int.from_bytes(zone[position:position + 2], "big")
        taille, position = lire(position + 2)
        fin, champs = position + taille, []
        while position < fin:
            n, position = lire(position)
            champs.append(zone[position:position + n].decode("latin-1"))
            position += n
        yield numero, champs


class Noxlux:
    def __init__(self, bibliotheque, configuration):
        self.lib = ctypes.CDLL(bibliotheque)
        self.lib.NOX_LibererZoneMem.argtypes = [ctypes.c_void_p]
        # The text must live as long as the library looks at it.
        self.repertoire = configuration.encode()
        ctypes.c_char_p.in_dll(self.lib, "REPERTOIRE_SYSTEME").value = self.repertoire
        self.exiger(self.lib.NOX_InitLIB())

    @staticmethod
    def exiger(code, *permis):
        code &= 0xFFFF
        if code not in (0, *permis):
            raise RuntimeError(f"code 0x{code:04X}")
        return code

    def demander(self, fonction, *arguments, permis=()):
        """Calls a function that answers a zone: (code, groups)."""
        zone, taille = ctypes.c_void_p(), ctypes.c_uint()
        code = self.exiger(fonction(*arguments, ctypes.byref(zone), ctypes.byref(taille)), *permis)
        try:
            return code, list(groupes(ctypes.string_at(zone, taille.value)))
        finally:
            self.lib.NOX_LibererZoneMem(zone)

    def prix(self, acte, date):
        entree = groupe(3012, acte, "1", "0")
        _, reponse = self.demander(self.lib.NOX_ConsulterDonnee, b"CCAM_37", date.encode(), entree, len(entree))
        return int(reponse[0][1][0]) / 100

    def controler(self, facture):
        return self.demander(self.lib.NOX_ControleComplet, facture, len(facture), permis=(0xD121, 0xD122))

    def modifier_prix(self, acte, effet, centimes):
        entree = groupe(3201, acte, "1", "0", str(centimes))
        self.exiger(self.lib.NOX_ModifierDonnee(b"CCAM_37", effet.encode(), entree, len(entree)))


def facture(centimes):
    return b"".join([
        groupe(1110, "75123456", "7", "", "", "1", "04", "", "", "", "", "", "", "19800517"),
        groupe(1511, ""),
        groupe(1610, "1", "20260115", "1", "ADC", "", "", "", "", "", "", str(centimes), str(centimes), "100"),
        groupe(1820, "1", "C"),
        groupe(2020, "1", str(centimes)),
        groupe(2100, "1", "HHFA001", "", "1", "0", "", "", "", "", "", "", "", ""),
        groupe(3500, "751"),
    ])


def main():
    noxlux = Noxlux(*sys.argv[1:3])
    prix = noxlux.prix("HHFA001", "20260115")
    print(f"HHFA001 le 15/01/2026 : {prix:.2f} euros")
    code, _ = noxlux.controler(facture(round(prix * 100)))
    print(f"facture au prix : code 0x{code:04X}")
    noxlux.modifier_prix("HHFA001", "20260101", 20500)
    code, reponse = noxlux.controler(facture(round(prix * 100)))
    erreurs = [champs for numero, champs in reponse if numero == 3520]
    for reference, niveau, _, libelle, *_ in erreurs:
        print(f"prix changé : code 0x{code:04X}, {reference} ({niveau}) {libelle}")
    noxlux.exiger(noxlux.lib.NOX_SauvegarderReferentiel("Prix de février".encode("latin-1")))
    noxlux.exiger(noxlux.lib.NOX_TermLIB())
    return 0 if code == 0xD121 and noxlux_relu(prix) else 1


def noxlux_relu(ancien):
    """The change is there again when the library is loaded anew."""
    noxlux = Noxlux(*sys.argv[1:3])
    nouveau = noxlux.prix("HHFA001", "20260115")
    noxlux.exiger(noxlux.lib.NOX_TermLIB())
    print(f"HHFA001 relu : {nouveau:.2f} euros, au lieu de {ancien:.2f}")
    return nouveau == 205.00


if __name__ == "__main__":
    sys.exit(main())
