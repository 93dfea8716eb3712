// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Literals.h"

#include "shader/frontend/ClangHeaders.h"

#include <clang/AST/ExprCXX.h>
#include <clang/AST/RecursiveASTVisitor.h>

namespace softmetal::shader
{
namespace
{

class Shortener : public clang::RecursiveASTVisitor<Shortener>
{
public:
    explicit Shortener(clang::ASTContext& context) : context_(context) {}

    bool TraverseDecl(clang::Decl* declaration)
    {
        return within(declaration && depends(*declaration),
                      [&] { return RecursiveASTVisitor::TraverseDecl(declaration); });
    }

    bool TraverseLambdaExpr(clang::LambdaExpr* lambda)
    {
        return within(lambda->isGenericLambda(), [&] { return RecursiveASTVisitor::TraverseLambdaExpr(lambda); });
    }

    bool VisitFloatingLiteral(clang::FloatingLiteral* literal)
    {
        if (!inside_ || !literal->getType()->isSpecificBuiltinType(clang::BuiltinType::Double)) return true;
        llvm::APFloat value = literal->getValue();
        bool inexact = false;
        value.convert(llvm::APFloat::IEEEsingle(), llvm::APFloat::rmNearestTiesToEven, &inexact);
        literal->setType(context_.FloatTy);
        literal->setSemantics(llvm::APFloat::IEEEsingle());
        literal->setValue(context_, value);
        return true;
    }

private:
    static bool depends(const clang::Decl& declaration)
    {
        const auto* scope = llvm::dyn_cast<clang::DeclContext>(&declaration);
        return llvm::isa<clang::TemplateDecl>(declaration) || (scope && scope->isDependentContext());
    }

    template <class Call>
    bool within(bool dependent, Call call)
    {
        const bool before = inside_;
        inside_ |= dependent;
        const bool result = call();
        inside_ = before;
        return result;
    }

    clang::ASTContext& context_;
    bool inside_ = false; // something that depends on a template's parameters
};

} // namespace

void shortenLiterals(clang::ASTContext& context, clang::Decl* declaration)
{
    Shortener(context).TraverseDecl(declaration);
}

} // namespace softmetal::shader
