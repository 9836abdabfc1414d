// Roots of the value types exchanged with the reference, the zones and the rules.
#ifndef NOXLUX_TYPES_TYPE_DONNEE_H
#define NOXLUX_TYPES_TYPE_DONNEE_H

#include <cstddef>
#include <cstdio>
#include <string>

namespace noxlux {

using byte = unsigned char;

class TypeDonnee {
 public:
  // Prints the value.
  virtual void afficher(std::FILE* sortie) const = 0;
  // Writes the value to the trace.
  virtual void dump(unsigned short module) const = 0;
  // Whether the value is filled.
  virtual bool estRenseigne() const = 0;
  // Internal consistency.
  virtual bool ok() const = 0;

 protected:
  TypeDonnee() = default;
  TypeDonnee(const TypeDonnee&) = default;
  TypeDonnee& operator=(const TypeDonnee&) = default;
  ~TypeDonnee() = default;
};

// A value that has a byte form in zones.
class TypeSimple : public TypeDonnee {
 public:
  // The byte form; empty for a value that is not filled.
  virtual std::string lireBytes() const = 0;
  // How many bytes that form has.
  virtual std::size_t lireTaille() const { return lireBytes().size(); }

 protected:
  TypeSimple() = default;
  TypeSimple(const TypeSimple&) = default;
  TypeSimple& operator=(const TypeSimple&) = default;
  ~TypeSimple() = default;
};

// A value made of others.
class TypeComplexe : public TypeDonnee {
 protected:
  TypeComplexe() = default;
  TypeComplexe(const TypeComplexe&) = default;
  TypeComplexe& operator=(const TypeComplexe&) = default;
  ~TypeComplexe() = default;
};

}  // namespace noxlux

#endif
