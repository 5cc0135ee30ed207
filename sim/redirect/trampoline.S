/*
 * dlopen and dlsym of the path redirection (redirect.c). Each asks a C helper
 * where to go, then jumps to the real function, so the real one sees the
 * original caller's return address: glibc uses it to resolve RTLD_NEXT and
 * the caller's library search path.
 */
#if defined(__x86_64__)
        .text

        .globl  dlopen
        .type   dlopen, @function
dlopen:
        .cfi_startproc
        pushq   %rsi                    /* mode */
        .cfi_adjust_cfa_offset 8
        pushq   %rdi                    /* file, possibly rewritten */
        .cfi_adjust_cfa_offset 8
        subq    $8, %rsp                /* keep the stack 16-byte aligned */
        .cfi_adjust_cfa_offset 8
        leaq    8(%rsp), %rdi           /* &file */
        call    vora_redirect_dlopen_target
        addq    $8, %rsp
        .cfi_adjust_cfa_offset -8
        popq    %rdi
        .cfi_adjust_cfa_offset -8
        popq    %rsi
        .cfi_adjust_cfa_offset -8
        jmp     *%rax
        .cfi_endproc
        .size   dlopen, .-dlopen

        .globl  dlsym
        .type   dlsym, @function
dlsym:
        .cfi_startproc
        pushq   %rdi                    /* handle */
        .cfi_adjust_cfa_offset 8
        pushq   %rsi                    /* name */
        .cfi_adjust_cfa_offset 8
        subq    $8, %rsp
        .cfi_adjust_cfa_offset 8
        call    vora_redirect_dlsym_target
        addq    $8, %rsp
        .cfi_adjust_cfa_offset -8
        popq    %rsi
        .cfi_adjust_cfa_offset -8
        popq    %rdi
        .cfi_adjust_cfa_offset -8
        testq   %rax, %rax
        jz      1f
        jmp     *%rax
1:      ret                             /* hidden symbol: null */
        .cfi_endproc
        .size   dlsym, .-dlsym
#endif

        .section .note.GNU-stack,"",@progbits
