"""Writes dBASE III tables: (name, type and width, decimals) columns, texts in code page 850."""
import struct


def colonne(nom, genre):
    """"C13", "D", "N6.2" as (name, type, width, decimals)."""
    if genre == "D":
        return nom, "D", 8, 0
    largeur, _, decimales = genre[1:].partition(".")
    # A decimal's width counts the point and leaves room for its whole part.
    return nom, genre[0], int(largeur) + (int(decimales) + 1 if decimales else 0), int(decimales or 0)


def champ(valeur, genre, largeur, decimales):
    if valeur is None or valeur == "":
        texte = b""
    elif genre == "N":
        texte = f"{valeur:.{decimales}f}".encode() if not isinstance(valeur, str) else valeur.encode()
    else:
        texte = valeur.encode("cp850") if isinstance(valeur, str) else valeur
    assert len(texte) <= largeur, (valeur, largeur)
    return texte.rjust(largeur) if genre == "N" else texte.ljust(largeur)


def ecrire(chemin, colonnes, lignes, effacees=()):
    """Writes a table; the records whose rank is in `effacees` are marked as deleted."""
    colonnes = [colonne(*c) for c in colonnes]
    longueur = 1 + sum(c[2] for c in colonnes)
    debut = 32 + 32 * len(colonnes) + 1
    with open(chemin, "wb") as fichier:
        fichier.write(struct.pack("<4BIHH20x", 3, 126, 1, 1, len(lignes), debut, longueur))
        for nom, genre, largeur, decimales in colonnes:
            fichier.write(struct.pack("<11sc4xBB14x", nom.encode(), genre.encode(), largeur, decimales))
        fichier.write(b"\r")
        for rang, ligne in enumerate(lignes):
            marque = b"*" if rang in effacees else b" "
            fichier.write(marque + b"".join(champ(v, *c[1:]) for v, c in zip(ligne, colonnes)))
        fichier.write(b"\x1a")
