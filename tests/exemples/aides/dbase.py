"""Writes dBASE III tables, texts in code page 850."""
import struct


def colonne(texte):
    """"NOM C13", "NOM D", "NOM N6.2" as (name, type, width, decimals); a width leaves room for the point."""
    nom, genre = texte.split()
    if genre == "D":
        return nom.encode(), b"D", 8, 0
    largeur, _, decimales = genre[1:].partition(".")
    return nom.encode(), genre[0].encode(), int(largeur) + (1 if decimales else 0), int(decimales or 0)


def forme(genre, largeur, decimales, valeur):
    """How a field is laid out; a value that is given as a text is written as it stands."""
    cote = ">" if genre == b"N" else "<"
    return f"{{:{cote}{largeur}}}" if isinstance(valeur, str) else f"{{:{cote}{largeur}.{decimales}f}}"


def ecrire(chemin, colonnes, lignes, effacees=()):
    """Writes a table; the records whose rank is in `effacees` are marked as deleted."""
    colonnes = [colonne(c) for c in colonnes]
    longueur = 1 + sum(c[2] for c in colonnes)
    entete = struct.pack("<4BIHH20x", 3, 126, 1, 1, len(lignes), 33 + 32 * len(colonnes), longueur)
    descriptions = b"".join(struct.pack("<11sc4xBB14x", *c) for c in colonnes)
    formes = {}  # of a record, by the types of its values
    with open(chemin, "wb") as fichier:
        fichier.write(entete + descriptions + b"\r")
        for rang, ligne in enumerate(lignes):
            types = tuple(map(type, ligne))
            if types not in formes:
                formes[types] = "".join(forme(*c[1:], v) for c, v in zip(colonnes, ligne, strict=True))
            octets = (("*" if rang in effacees else " ") + formes[types].format(*ligne)).encode("cp850")
            assert len(octets) == longueur, ligne
            fichier.write(octets)
        fichier.write(b"\x1a")
