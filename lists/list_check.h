// The lists' invariant check (internal to the lists).
//
// Under the KALBOR_VALIDATE build (the asan preset) every editing member of
// a list holds a ListCheck, which walks the list with its Validate when the
// member returns; otherwise the check compiles to nothing.
#ifndef KALBOR_LISTS_LIST_CHECK_H
#define KALBOR_LISTS_LIST_CHECK_H

#include <cassert>

namespace ka_detail {

template <class L>
class ListCheck {
 public:
#if defined(KALBOR_VALIDATE)
  explicit ListCheck(const L& list) : m_list(list) {}
  ~ListCheck() { assert(m_list.Validate()); }

 private:
  const L& m_list;
#else
  explicit ListCheck(const L&) {}
#endif
  ListCheck(const ListCheck&) = delete;
  ListCheck& operator=(const ListCheck&) = delete;
};

}  // namespace ka_detail

#endif  // KALBOR_LISTS_LIST_CHECK_H
