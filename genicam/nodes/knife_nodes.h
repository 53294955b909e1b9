// KnifeFormula: the formula of a knife with its variables. IntegerKnife, FloatKnife: the elements IntSwissKnife and
// SwissKnife, the expressions of formulas and the two formulas of a converter.
#pragma once

#include "formula/formula.h"
#include "nodes/number_base.h"

namespace GENAPI_NAMESPACE::runtime
{

// Number is int64_t or double.
template <class Number>
class KnifeFormula
{
public:
    void Resolve(const Node& owner);

    // `input` is FROM or TO of a converter's formula; a knife has no input. All variables, constants and expressions
    // are read, even if the formula does not use them.
    Number Evaluate(const Node& owner, Number input, ReadOptions options);
    // Compiles the formula at the first call. Throws LogicalErrorException.
    const Formula<Number>& Compiled(const Node& owner);
    // The access mode as restricted by the variables.
    EAccessMode Mode() const;
    bool Cachable() const;

private:
    enum class Aspect : uint8_t
    {
        Value,
        Min,
        Max,
        Inc,
        AccessMode,
        Visibility,
        CachingMode,
        Entry,
        Unknown
    };
    struct Variable
    {
        std::string_view name; // with its suffix
        Node* node;
        Aspect aspect;
    };

    static Aspect AspectOf(std::string_view name);
    Number ReadVariable(const Node& owner, const Variable& variable, ReadOptions options) const;

    std::vector<Variable> variables;
    std::string_view text;
    std::string_view inputName; // FROM, TO or none
    std::unique_ptr<const Formula<Number>> formula;
    std::unique_ptr<const std::string> failure; // the reason why it does not compile
};

extern template class KnifeFormula<int64_t>;
extern template class KnifeFormula<double>;

// The functions of any knife that the parts of a converter and the map need.
class Knife
{
public:
    virtual ~Knife() = default;
    virtual void Compile() = 0;
};

template <class Base, class Number>
class KnifeNode : public Base, public Knife
{
public:
    using Base::Base;
    void Resolve() override;
    void Compile() override { formula.Compiled(*this); }
    Number Compute(Number input, ReadOptions options) { return formula.Evaluate(*this, input, options); }

protected:
    Number Read(ReadOptions options) override { return Compute(0, options); }
    void Write(Number value, bool verify) override;
    EAccessMode LinkedMode() const override { return formula.Mode(); }
    EAccessMode KindMode() const override { return RO; }
    ECachingMode NaturalCaching() const override;

private:
    KnifeFormula<Number> formula;
};

extern template class KnifeNode<IntegerBase, int64_t>;
extern template class KnifeNode<FloatBase, double>;

using IntegerKnife = KnifeNode<IntegerBase, int64_t>;
using FloatKnife = KnifeNode<FloatBase, double>;

} // namespace GENAPI_NAMESPACE::runtime
