// The page comes to life.
{
    const data = JSON.parse(document.getElementById('data').textContent);
    const pages = {check: Report, diff: Differences};
    const search = new Search();
    const page = new (pages[data.command] || Explanation)(data, search);
    const main = document.getElementById('main');
    page.render(main);
    const redacted = redactedSection(data, search);
    if (redacted) {
        main.append(redacted);
        contents([['redacted', 'Redacted', data.redacted.length]]);
    }
    const settle = () => {
        search.settleTop();
        List.updateAll();
    };
    settle();
    // Both come before the next frame is painted, so nothing empty is ever seen.
    document.addEventListener('scroll', () => List.updateAll(), {capture: true, passive: true});
    new ResizeObserver(settle).observe(document.body);
    window.addEventListener('resize', settle);
    window.addEventListener('beforeprint', () => List.print(true));
    window.addEventListener('afterprint', () => List.print(false));
    page.follow();
    window.addEventListener('hashchange', () => page.follow());
    requestAnimationFrame(() => setTimeout(() => {
        performance.mark('painted');
        List.all.forEach((list) => list.rows.forEach((row) => list.textOf(row)));
    }));
}
