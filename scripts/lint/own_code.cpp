// A plugin of clang-tidy: its checks look at this project's declarations only. Without it every check visits all
// declarations of the standard library that a source includes, which takes most of the linter's time, although nothing
// that is found there is shown.
//
// It poses as a check that matches the translation unit, the first node that is visited, and narrows then what is
// visited below it. The static analyzer chooses its functions itself and is not concerned.
#include <clang-tidy/ClangTidyCheck.h>
#include <clang-tidy/ClangTidyModule.h>
#include <clang-tidy/ClangTidyModuleRegistry.h>
#include <clang/AST/ASTContext.h>
#include <clang/ASTMatchers/ASTMatchFinder.h>
#include <clang/ASTMatchers/ASTMatchers.h>
#include <clang/Basic/SourceManager.h>

#include <vector>

namespace {

using clang::ast_matchers::MatchFinder;

class OwnCode final : public clang::tidy::ClangTidyCheck {
 public:
  using ClangTidyCheck::ClangTidyCheck;

  void registerMatchers(MatchFinder* finder) override {
    finder->addMatcher(clang::ast_matchers::translationUnitDecl(), this);
  }

  void check(const MatchFinder::MatchResult& result) override {
    context_ = result.Context;
    std::vector<clang::Decl*> own;
    for (clang::Decl* declaration : context_->getTranslationUnitDecl()->decls()) {
      const clang::SourceLocation location = result.SourceManager->getExpansionLoc(declaration->getLocation());
      if (location.isValid() && !result.SourceManager->isInSystemHeader(location)) own.push_back(declaration);
    }
    context_->setTraversalScope(own);
  }

  void onEndOfTranslationUnit() override {
    if (context_ != nullptr) context_->setTraversalScope({context_->getTranslationUnitDecl()});
    context_ = nullptr;
  }

 private:
  clang::ASTContext* context_ = nullptr;
};

class OwnCodeModule final : public clang::tidy::ClangTidyModule {
 public:
  void addCheckFactories(clang::tidy::ClangTidyCheckFactories& factories) override {
    factories.registerCheck<OwnCode>("qnv-own-code");
  }
};

const clang::tidy::ClangTidyModuleRegistry::Add<OwnCodeModule> kRegistered("qnv-own-code", "Visits own code only.");

}  // namespace
